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
sqlcipher="${SQLCIPHER:-sqlcipher}"
# The key the tool opens the configuration database with.
key="0a1b2c3d4e5f60718293a4b5c6d7e8f9"

fail() {
    echo "make-sample-catalogue: $*" >&2
    rm -f "$out"
    exit 1
}

command -v "$sqlcipher" >/dev/null 2>&1 || fail "'$sqlcipher' not found (Debian package sqlcipher)"
for f in "$root/database/schema.sql" "$root/database/sample-data.sql"; do
    [ -r "$f" ] || fail "cannot read $f"
done

mkdir -p "$(dirname "$out")"
rm -f "$out" "$out-journal"

# -bail stops at the first failing statement and makes the exit status non-zero.
{
    printf "PRAGMA key = '%s';\n" "$key"
    echo "BEGIN;"
    cat "$root/database/schema.sql" "$root/database/sample-data.sql"
    echo "COMMIT;"
} | "$sqlcipher" -bail "$out" >/dev/null || fail "sqlcipher failed while building $out"

# Read it back with the key: the file must decrypt and every reference must
# point at an existing row.
check="$(printf "PRAGMA key = '%s';\nSELECT count(*) FROM chamber_type;\nPRAGMA foreign_key_check;\n" "$key" \
    | "$sqlcipher" -bail "$out" 2>&1)" || fail "cannot read back $out: $check"
# Newer sqlcipher versions echo "ok" for the key pragma.
check="$(printf '%s\n' "$check" | grep -v '^ok$' || true)"
types="$(printf '%s\n' "$check" | head -n 1)"
problems="$(printf '%s\n' "$check" | tail -n +2)"
[ -n "$types" ] && [ "$types" -gt 0 ] 2>/dev/null || fail "no chamber types in $out: $check"
[ -z "$problems" ] || fail "foreign key check failed:
$problems"

echo "Sample catalogue: $out ($types chamber types)"
