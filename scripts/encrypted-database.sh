# Shared by the scripts that make the project's encrypted databases; sourced,
# not run. The caller sets $out (the file to make) and $me (its name for
# messages) before calling these.

# The key the tool and the monitoring application open their databases with.
key="0a1b2c3d4e5f60718293a4b5c6d7e8f9"
sqlcipher="${SQLCIPHER:-sqlcipher}"

fail() {
    echo "$me: $*" >&2
    rm -f "$out"
    exit 1
}

# build_database FILE...: makes $out afresh from the SQL files, in one
# transaction; the first failing statement removes the half-built file.
build_database() {
    command -v "$sqlcipher" >/dev/null 2>&1 || fail "'$sqlcipher' not found (Debian package sqlcipher)"
    local f
    for f in "$@"; do
        [ -r "$f" ] || fail "cannot read $f"
    done
    mkdir -p "$(dirname "$out")"
    rm -f "$out" "$out-journal"
    # -bail stops at the first failing statement and makes the exit status non-zero.
    {
        printf "PRAGMA key = '%s';\n" "$key"
        echo "BEGIN;"
        cat "$@"
        echo "COMMIT;"
    } | "$sqlcipher" -bail "$out" >/dev/null || fail "sqlcipher failed while building $out"
}

# read_back SQL: runs SQL on $out with the key and prints its output.
read_back() {
    local output
    # A marker line: newer sqlcipher versions echo "ok" for the key pragma.
    output="$(printf "PRAGMA key = '%s';\nSELECT 'read back:';\n%s\n" "$key" "$1" | "$sqlcipher" -bail "$out" 2>&1)" \
        || fail "cannot read back $out: $output"
    printf '%s\n' "$output" | sed '0,/^read back:$/d'
}
