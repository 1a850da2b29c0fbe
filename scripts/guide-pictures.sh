#!/usr/bin/env bash
# Takes the user guide's pictures (docs/guide/images/) and the README's (docs/view*.png) from the
# real console under a virtual display, on a fresh demo server folder, so that they can be taken
# again whenever a window changes.
# usage: scripts/guide-pictures.sh [BUILD_DIR]   (default: build; it must hold SableManager, sablectl, setdb)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
console=$build/src/SableManager
for program in "$console" "$build/tools/sablectl/sablectl" "$build/src/setdb"; do
    [ -x "$program" ] || { echo "guide-pictures.sh: $program is not built" >&2; exit 1; }
done

work=$(mktemp -d /tmp/sable-guide.XXXXXX)
trap 'rm -rf "$work"' EXIT
home=$work/home
export SABLE_REGISTRY_DIR=$work/registry XDG_RUNTIME_DIR=$work/runtime LC_ALL=C.UTF-8
mkdir -p "$SABLE_REGISTRY_DIR" "$home"
install -d -m 700 "$XDG_RUNTIME_DIR"
"$build/tools/sablectl/sablectl" --home "$home" db init --demo >/dev/null
mkdir -p "$home/SableBox/공용" "$home/SableBox/영업자료/해외" "$home/SableBox/연구소"
cp data/Template.html "$home/Template.html"

out=docs/guide/images
mkdir -p "$out"
# picture NAME [console options]: the console on the demo folder, the window or the dialog a
# --command opened.
picture() {
    local name=$1
    shift
    xvfb-run -a -s "-screen 0 1280x1024x24" "$console" --home "$home" "$@" --screenshot "$PWD/$out/$name.png" \
        >/dev/null 2>&1
    echo "$out/$name.png"
}
picture start-page
picture chart-editor --view 2
picture rank-editor --view 3
picture folder-permissions --view 4
picture user-permissions --view 5
picture sablebox-settings --view 6
picture registration-mail --view 2 --command 32803
picture import-users --command 32804
picture logo --command 32821
picture home-page-links --command 32820
picture file-servers --command 32825
picture service-manager --command 32850
xvfb-run -a -s "-screen 0 1280x1024x24" "$build/src/setdb" --home "$home" --screenshot "$PWD/$out/database-settings.png" \
    >/dev/null 2>&1
echo "$out/database-settings.png"

cp "$out/start-page.png" docs/view1.png
cp "$out/chart-editor.png" docs/view2.png
cp "$out/rank-editor.png" docs/view3.png
echo "docs/view1.png docs/view2.png docs/view3.png"
