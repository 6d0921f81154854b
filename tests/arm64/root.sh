# Debian's packages for arm64 in a folder of their own: what the emulated programs need, Mesa's driver and
# GoogleTest included. Nothing of the system is changed; no root is needed. Sourced by run.sh.

ARM64_ROOT_PACKAGES="libc6 libstdc++6 libegl1 libgles2 libegl-mesa0 libgl1-mesa-dri libegl-dev libgles-dev
    libgtest-dev libgmock-dev"

# arm64_root FOLDER: prints the root below the folder, made if it is not there.
arm64_root() {
    local sRoot=$1/root sApt=$1/apt sLog=$1/log sDeb
    echo "$sRoot"
    [ -e "$sRoot/.complete" ] && return 0
    command -v apt-get >/dev/null || return 1
    rm -rf "$sRoot" "$sApt"
    mkdir -p "$sRoot" "$sApt/lists/partial" "$sApt/archives/partial"
    : >"$sApt/status"
    local vApt=(apt-get -qq -o APT::Architecture=arm64 -o APT::Architectures::=arm64
        -o "Dir::State=$sApt" -o "Dir::State::status=$sApt/status" -o "Dir::State::lists=$sApt/lists"
        -o "Dir::Cache=$sApt" -o "Dir::Cache::archives=$sApt/archives" -o "Dir::Log=$sApt"
        -o APT::Sandbox::User= -o Debug::NoLocking=1 -o APT::Install-Recommends=0)
    if ! { "${vApt[@]}" update && "${vApt[@]}" install -y --download-only $ARM64_ROOT_PACKAGES; } >"$sLog" 2>&1; then
        tail -n 5 "$sLog" >&2
        return 1
    fi
    for sDeb in "$sApt"/archives/*.deb; do
        dpkg -x "$sDeb" "$sRoot" || return 1
    done
    rm -rf "$sApt"
    touch "$sRoot/.complete"
}
