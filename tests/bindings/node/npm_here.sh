# For scripts that install with npm: starts a local registry with koffi and configures npm for it. Reads
# $tools, the folder of Node's tools, and $folder, for its files. The script ends the process $registry.
# shellcheck shell=bash

python3 "$(dirname "${BASH_SOURCE[0]}")/npm_registry.py" "$tools/node_modules/koffi" "$folder/port" &
registry=$!
for ((i = 0; i < 600; i++)); do
    [ -s "$folder/port" ] && break
    sleep 0.1
done
# Ignore this machine's npm settings. "force" makes npm install packages for Windows here.
export npm_config_registry="http://127.0.0.1:$(<"$folder/port")/" npm_config_cache="$folder/cache"
export npm_config_userconfig="$folder/npmrc" npm_config_globalconfig="$folder/npmrc-of-all"
export npm_config_audit=false npm_config_fund=false npm_config_update_notifier=false
export npm_config_force=true npm_config_ignore_scripts=true
unset NODE_PATH
