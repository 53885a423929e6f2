#!/usr/bin/env bash
# Builds the encrypted sample configuration database from database/schema.sql
# and database/sample-data.sql.
#
#   scripts/make-sample-catalogue.sh [output-file]
#
# Default output: database/configuration.sqlite3 in the source tree. An old
# file is removed first; on any failure the half-built file is removed too and
# the script exits non-zero. SQLCIPHER may name the sqlcipher executable.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
out="${1:-$root/database/configuration.sqlite3}"
me="make-sample-catalogue"
. "$root/scripts/encrypted-database.sh"

build_database "$root/database/schema.sql" "$root/database/sample-data.sql"

# The file must decrypt and every reference must point at an existing row.
check="$(read_back "SELECT count(*) FROM chamber_type;
PRAGMA foreign_key_check;")"
types="$(printf '%s\n' "$check" | head -n 1)"
problems="$(printf '%s\n' "$check" | tail -n +2)"
[ -n "$types" ] && [ "$types" -gt 0 ] 2>/dev/null || fail "no chamber types in $out: $check"
[ -z "$problems" ] || fail "foreign key check failed:
$problems"

echo "Sample catalogue: $out ($types chamber types)"
