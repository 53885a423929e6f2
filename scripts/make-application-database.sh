#!/usr/bin/env bash
# Builds an empty encrypted application database of the current schema from
# database/application-schema.sql, as the monitoring application is delivered
# with it.
#
#   scripts/make-application-database.sh [output-file]
#
# Default output: database/application.sqlite3 in the source tree. An old file
# is removed first; on any failure the half-built file is removed too and the
# script exits non-zero. SQLCIPHER may name the sqlcipher executable.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
out="${1:-$root/database/application.sqlite3}"
me="make-application-database"
. "$root/scripts/encrypted-database.sh"

build_database "$root/database/application-schema.sql"

# The file must decrypt, hold its version and be whole.
check="$(read_back "SELECT max(version) FROM database_version_info;
PRAGMA integrity_check;")"
version="$(printf '%s\n' "$check" | head -n 1)"
integrity="$(printf '%s\n' "$check" | tail -n +2)"
[ -n "$version" ] && [ "$version" -ge 19 ] 2>/dev/null || fail "no schema version 19 in $out: $check"
[ "$integrity" = "ok" ] || fail "integrity check failed: $integrity"

echo "Application database: $out (schema version $version)"
