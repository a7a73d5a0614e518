# Sourced by the scripts, with the repository's root as the current directory.

is_installed() {
    dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed
}

# set_up GROUP...: installs what is missing of these groups of .ci/packages. Ends the script with
# status 3 when packages are missing and nobody here may install them.
set_up() {
    local group names missing=()
    if ! command -v dpkg-query >/dev/null; then
        echo "Not a Debian or Ubuntu system: .ci/packages lists what must be there." >&2
        return 0
    fi
    while read -r group names _; do
        [[ -n $group && $group != '#'* && " $* " == *" $group "* ]] || continue
        is_installed "${names%%|*}" || is_installed "${names##*|}" || missing+=("$names")
    done <.ci/packages
    ((${#missing[@]})) || return 0

    local apt=(apt-get --quiet --yes --no-install-recommends)
    local as_root=()
    if ((EUID != 0)); then
        as_root=(sudo)
        if ! command -v sudo >/dev/null || ! sudo true; then
            echo "Packages are missing, and installing them needs root. Run as root:" >&2
            echo "    apt-get update && ${apt[*]} install ${missing[*]%%|*}" >&2
            exit 3
        fi
    fi
    echo "== Installing ${missing[*]%%|*} ${as_root[*]:+(through sudo)}"
    "${as_root[@]}" apt-get --quiet update </dev/null ||
        echo "The package lists could not be renewed; trying with those at hand." >&2
    local known=()
    for names in "${missing[@]}"; do
        if apt-cache show "${names%%|*}" >/dev/null 2>&1; then
            known+=("${names%%|*}")
        else
            known+=("${names##*|}")
        fi
    done
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive "${apt[@]}" install "${known[@]}" </dev/null
}
