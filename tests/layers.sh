#!/usr/bin/env bash
# Fails when a layer includes a header of a layer above it. The layers, from
# the bottom: common <- log <- synclink <- docactions <- overlay <- addin; a
# folder may include its own headers and those of the folders to its left.
# tests/, tools/, bench/ and fuzz/ sit above all and are not checked. The
# layers never include tests/ or tools/.
set -u
root="${1:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)}"
layers=(common log synclink docactions overlay addin)
status=0
for ((rank = 0; rank < ${#layers[@]}; rank++)); do
  folder="${layers[$rank]}"
  forbidden=("${layers[@]:$((rank + 1))}" tests tools bench fuzz)
  pattern="^[[:space:]]*#[[:space:]]*include[[:space:]]*\"($(IFS='|'; echo "${forbidden[*]}"))/"
  while IFS= read -r hit; do
    [ -n "$hit" ] || continue
    echo "$hit: $folder/ includes a layer above it"
    status=1
  done < <(grep -rnE "$pattern" "$root/$folder" --include='*.h' --include='*.cpp' --include='*.c' 2>/dev/null |
           sed "s#^$root/##")
done
[ "$status" -eq 0 ] && echo "every #include points down the layers"
exit "$status"
