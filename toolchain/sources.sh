# Fetches Debian source packages into the cache with apt, which verifies them.
# shellcheck shell=bash

# The machine's package sources, changed from binary to source packages.
source_lists() {
    local into=$1 file
    rm -rf "$into"
    mkdir -p "$into"
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -f "$file" ] && grep -q "$release" "$file" &&
            sed -n 's/^deb /deb-src /p' "$file" >"$into/$(basename "$file" .list).list"
    done
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -f "$file" ] && grep -q "$release" "$file" &&
            sed 's/^Types:.*/Types: deb-src/' "$file" >"$into/$(basename "$file")"
    done
    return 0
}

# fetch_source [OPTION...] PACKAGE...: downloads the .dsc files and archives into $cache/sources.
fetch_source() {
    local lists="$cache/apt" downloads="$cache/sources"
    mkdir -p "$downloads" "$lists/state/partial"
    source_lists "$lists/sources.list.d"
    (
        cd "$downloads"
        apt=(apt-get -o Dir::Etc::sourcelist=/dev/null
             -o "Dir::Etc::sourceparts=$lists/sources.list.d"
             -o "Dir::State::lists=$lists/state" -o APT::Sandbox::User=root)
        "${apt[@]}" update
        "${apt[@]}" source --download-only "$@"
    )
}

# source_file GLOB: prints the newest downloaded file with that name.
source_file() {
    local found
    found=$(find "$cache/sources" -maxdepth 1 -name "$1" | sort -V | tail -n 1)
    [ -n "$found" ] || { echo "no $1 in the downloaded sources" >&2; return 1; }
    printf '%s' "$found"
}
