# Sourced by the checks, with the repository's root as the current directory.

# sources SUFFIX FOLDER...: the files of these folders with that suffix, NUL-terminated, sorted.
sources() {
    local suffix=$1 folder
    shift
    for folder in "$@"; do
        [[ ! -d $folder ]] || find "$folder" -type f -name "*$suffix" -print0
    done | sort -z
}
