# Sourced by the scripts beside it: each tells with --help what the comment at its head says.
show_help() {
    sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
}
case "${1-}" in
-h | --help)
    show_help
    exit
    ;;
esac
