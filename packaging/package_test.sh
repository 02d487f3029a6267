#!/usr/bin/env bash
# Builds the Debian package from a built tree and meets it as a desktop and a user would: its
# fields and files, an install into a scratch root, the desktop entry and metainfo validators,
# its dependencies resolved by apt, and the packaged program started on Xvfb with a scratch
# home, where its preferences must land in the user's configuration folder.
#   package_test.sh BUILD_DIR APP_ID VERSION
set -euo pipefail
build=$(cd "$1" && pwd)
app_id=$2
version=$3

scratch=$(mktemp -d "${TMPDIR:-/tmp}/tessivo-package.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
fail() {
  echo "FAIL: $*" >&2
  exit 1
}
step() { echo "== $*"; }

for tool in cpack dpkg-deb desktop-file-validate appstreamcli apt-get file xvfb-run xdotool; do
  command -v "$tool" > /dev/null || fail "$tool is not installed"
done
[[ -x $build/tessivo ]] || fail "no program at $build/tessivo: build it first"
[[ -f $build/tessivo.portable ]] || fail "the build tree has no tessivo.portable beside the program"

# What a desktop needs, and nothing more: no test tool, no build-tree marker, no preferences.
expected=(
  "usr/bin/tessivo"
  "usr/share/applications/$app_id.desktop"
  "usr/share/metainfo/$app_id.metainfo.xml"
  "usr/share/icons/hicolor/scalable/apps/$app_id.svg"
)
sizes=(16 22 24 32 48 64 128 256)
for s in "${sizes[@]}"; do expected+=("usr/share/icons/hicolor/${s}x${s}/apps/$app_id.png"); done
expected_list=$(printf '%s\n' "${expected[@]}" | sort)

# Regular files under a root, relative to it, sorted.
files_under() { (cd "$1" && find . -type f | sed 's|^\./||' | sort); }

step "cpack"
cpack --config "$build/CPackConfig.cmake" -B "$scratch/cpack" > "$scratch/cpack.log" 2>&1 ||
  { cat "$scratch/cpack.log"; fail "cpack"; }
deb=$scratch/cpack/tessivo_${version}_$(dpkg --print-architecture).deb
[[ -f $deb ]] || { ls "$scratch/cpack"; fail "no $deb"; }

step "fields"
field() { dpkg-deb --field "$deb" "$1"; }
[[ $(field Package) == tessivo ]] || fail "Package: $(field Package)"
[[ $(field Version) == "$version" ]] || fail "Version: $(field Version)"
[[ $(field Section) == sound ]] || fail "Section: $(field Section)"
[[ $(field Maintainer) =~ ^[^\<]+\ \<[^@\>]+@[^\>]+\>$ ]] || fail "Maintainer: $(field Maintainer)"
description=$(field Description)
[[ $(wc -l <<< "$description") -ge 3 && $description == *CS2x* ]] || fail "Description: $description"
depends=$(field Depends)
echo "Depends: $depends"
for lib in libqt6core6 libqt6gui6 libqt6widgets6 'librtmidi[0-9]' 'libjack-jackd2-0|libjack-0'; do
  grep -Eq "(^|, | \| )($lib)( |,|$)" <<< "$depends" || fail "Depends lacks $lib"
done

step "contents"
dpkg-deb -x "$deb" "$scratch/extracted"
[[ $(files_under "$scratch/extracted") == "$expected_list" ]] ||
  fail "package files differ:"$'\n'"$(diff <(echo "$expected_list") <(files_under "$scratch/extracted"))"
grep -q '^-rwxr-xr-x root/root .* \./usr/bin/tessivo$' <<< "$(dpkg-deb --contents "$deb")" ||
  fail "usr/bin/tessivo is not an executable owned by root"

step "install with DESTDIR"
DESTDIR=$scratch/root cmake --install "$build" --prefix /usr > /dev/null
[[ $(files_under "$scratch/root") == "$expected_list" ]] ||
  fail "installed files differ:"$'\n'"$(diff <(echo "$expected_list") <(files_under "$scratch/root"))"
[[ -x $scratch/root/usr/bin/tessivo ]] || fail "installed program is not executable"
for s in "${sizes[@]}"; do
  file "$scratch/root/usr/share/icons/hicolor/${s}x${s}/apps/$app_id.png" | grep -q "PNG image data, $s x $s," ||
    fail "the ${s}x${s} icon is not a PNG of that size"
done

step "desktop entry and metainfo"
desktop=$scratch/root/usr/share/applications/$app_id.desktop
metainfo=$scratch/root/usr/share/metainfo/$app_id.metainfo.xml
# Some of its errors do not yet change its exit status, so any error or warning fails here.
validation=$(desktop-file-validate "$desktop" 2>&1) || fail "desktop-file-validate: $validation"
! grep -Eq ': (error|warning)' <<< "$validation" || fail "desktop-file-validate: $validation"
appstreamcli validate --no-net "$metainfo"
# What the validators leave unchecked: the names that tie the three together.
grep -qx "Exec=tessivo" "$desktop" || fail "Exec is not the installed program"
grep -qx "Icon=$app_id" "$desktop" || fail "Icon does not name the installed icon"
grep -q "<launchable type=\"desktop-id\">$app_id.desktop</launchable>" "$metainfo" ||
  fail "metainfo's launchable is not the desktop entry"
grep -q "<release version=\"$version\"" "$metainfo" || fail "metainfo has no release $version"

step "dependencies resolve"
# Against the archive as a fresh system sees it (nothing installed) where apt's lists are
# present, else against this system. A simulation: nothing is downloaded or installed.
apt_opts=(-o Debug::NoLocking=1)
if compgen -G "/var/lib/apt/lists/*_Packages*" > /dev/null; then
  : > "$scratch/empty-status"
  apt_opts+=(--no-install-recommends -o "Dir::State::status=$scratch/empty-status"
             -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache=)
fi
apt-get install --simulate "${apt_opts[@]}" "$deb" > "$scratch/apt.log" 2>&1 ||
  { cat "$scratch/apt.log"; fail "apt cannot resolve the package's dependencies"; }
grep -q '^Inst tessivo ' "$scratch/apt.log" || { cat "$scratch/apt.log"; fail "apt would not install tessivo"; }
echo "apt would install tessivo and $(($(grep -c '^Inst ' "$scratch/apt.log") - 1)) other packages"

step "the packaged program on Xvfb"
export HOME=$scratch/home XDG_CONFIG_HOME=$scratch/config
mkdir -p "$HOME"
export JACK_NO_START_SERVER=1 QT_QPA_PLATFORM=xcb
unset QT_SCALE_FACTOR
program=$scratch/extracted/usr/bin/tessivo
xvfb-run --auto-servernum --server-args="-screen 0 1600x1200x24" \
  bash "$(dirname "$0")/start_and_ok.sh" "$program" "$scratch/run1.log" ||
  { cat "$scratch/run1.log"; fail "first start"; }
prefs=$XDG_CONFIG_HOME/tessivo/tessivo.ini
[[ -f $prefs ]] || fail "no preferences at $prefs"
[[ $(stat -c %s "$prefs") == 169 ]] || fail "preferences are $(stat -c %s "$prefs") bytes"
[[ $(files_under "$scratch/extracted") == "$expected_list" ]] ||
  fail "the program wrote beside itself:"$'\n'"$(diff <(echo "$expected_list") <(files_under "$scratch/extracted"))"

# A second start reads the record: a density of 3 put in it survives its OK.
printf '\x03' | dd of="$prefs" bs=1 seek=163 conv=notrunc status=none
xvfb-run --auto-servernum --server-args="-screen 0 1600x1200x24" \
  bash "$(dirname "$0")/start_and_ok.sh" "$program" "$scratch/run2.log" ||
  { cat "$scratch/run2.log"; fail "second start"; }
[[ $(od -An -tu1 -j163 -N1 "$prefs" | tr -d ' ') == 3 ]] || fail "the second start did not read the preferences"
[[ $(stat -c %s "$prefs") == 169 ]] || fail "preferences are $(stat -c %s "$prefs") bytes after the second start"
echo "PASS"
