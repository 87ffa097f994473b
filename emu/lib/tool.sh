# Shared by the stand-in device tools: journal the command line as the
# device's caller wrote it (a tool found on PATH by its name, one called by
# absolute path by that path), and read the board's settings.
VDEV_DIR=/run/vdev
vdev_journal() {
    local name=$0
    case "$name" in /run/vdev/*) name=${name##*/} ;; esac
    local line="$name"
    local arg
    for arg in "$@"; do line="$line $arg"; done
    printf '%s\n' "$line" >>"$VDEV_DIR/journal"
}
vdev_board() {
    sed -n "s/^$1=//p" "$VDEV_DIR/board.conf" 2>/dev/null | head -n 1
}
