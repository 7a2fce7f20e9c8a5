# need WHAT PACKAGE...: sees to it that each command (or header, given by its path) is there; what is
# missing is installed when we are root on a Debian system, otherwise named, and the script ends.
need() {
    local missing=()
    while [ $# -ge 2 ]; do
        command -v "$1" >/dev/null || [ -e "$1" ] || missing+=("$2")
        shift 2
    done
    [ ${#missing[@]} -eq 0 ] && return
    if [ "$(id -u)" -eq 0 ] && command -v apt-get >/dev/null; then
        apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}"
    else
        echo "Please install: ${missing[*]}" >&2
        exit 1
    fi
}
