#!/usr/bin/env bash
# The Debian package as CPack makes it from this build tree: exactly the
# expected files with the expected modes, a dependency on the package of
# every library its programs and plug-ins need, the project's version in the
# package and atop its changelog, and no error from lintian.
#   check-package.sh BUILD_DIR VERSION CHANGELOG
set -euo pipefail
build=$1 version=$2 changelog=$3

for tool in cpack dpkg-deb dpkg-shlibdeps dpkg-parsechangelog lintian objdump; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is missing (scripts/setup installs it)"; exit 77; }
done

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cpack --config "$build/CPackConfig.cmake" -B "$scratch" >"$scratch/cpack.log" 2>&1 || { cat "$scratch/cpack.log"; exit 1; }
deb=$scratch/sorvane_${version}_$(dpkg --print-architecture).deb
[ -f "$deb" ] || { echo "FAIL: no $(basename "$deb")"; ls "$scratch"; exit 1; }
failed=0
fail() { echo "FAIL: $*"; failed=1; }

# One copy of the VST plug-in, in the folder hosts scan; programs 0755,
# everything else 0644.
expected="-rwxr-xr-x ./usr/bin/sorvane
-rwxr-xr-x ./usr/bin/sorvane-validate
-rw-r--r-- ./usr/lib/lv2/Sorvane.lv2/Sorvane.ttl
-rw-r--r-- ./usr/lib/lv2/Sorvane.lv2/Sorvane_dsp.so
-rw-r--r-- ./usr/lib/lv2/Sorvane.lv2/Sorvane_ui.so
-rw-r--r-- ./usr/lib/lv2/Sorvane.lv2/manifest.ttl
-rw-r--r-- ./usr/lib/lv2/Sorvane.lv2/presets.ttl
-rw-r--r-- ./usr/lib/vst/Sorvane.so
-rw-r--r-- ./usr/share/doc/sorvane/LICENSE
-rw-r--r-- ./usr/share/doc/sorvane/README.md
-rw-r--r-- ./usr/share/doc/sorvane/changelog.gz
-rw-r--r-- ./usr/share/doc/sorvane/copyright
-rw-r--r-- ./usr/share/man/man1/sorvane-validate.1.gz
-rw-r--r-- ./usr/share/man/man1/sorvane.1.gz"
actual=$(dpkg-deb --contents "$deb" | awk '$1 !~ /^d/ {print $1, $6}' | sort)
if [ "$actual" != "$(sort <<<"$expected")" ]; then
  fail "contents differ (< expected, > packaged):"
  diff <(sort <<<"$expected") <(echo "$actual") || true
fi

# Every library a packaged program or plug-in links must come from a package
# it depends on.
depends=$(dpkg-deb --field "$deb" Depends)
echo "Depends: $depends"
depended=$(sed 's/([^)]*)//g; s/|/,/g' <<<"$depends" | tr ',' '\n' | awk '{print $1}')
dpkg-deb --extract "$deb" "$scratch/root"
libraries=$(ldconfig -p)
for object in "$scratch"/root/usr/bin/* $(find "$scratch/root/usr/lib" -name '*.so'); do
  for soname in $(objdump -p "$object" | awk '$1 == "NEEDED" {print $2}'); do
    path=$(awk -v s="$soname" '$1 == s && /x86-64/ && !n++ {print $NF}' <<<"$libraries")
    [ -n "$path" ] || { fail "${object#"$scratch"/root} needs $soname, which is not installed here"; continue; }
    owners=$( (dpkg -S "$path" || dpkg -S "$(realpath "$path")" || dpkg -S "/usr$path") 2>/dev/null \
              | sed 's/: [^ ]*$//; s/, /\n/g' | sed 's/:.*//' | sort -u)
    found=0
    for owner in $owners; do
      grep -Fxq "$owner" <<<"$depended" && found=1
    done
    [ "$found" = 1 ] || fail "${object#"$scratch"/root} needs $soname (from ${owners:-no package}), not in Depends"
  done
done

[ "$(dpkg-deb --field "$deb" Version)" = "$version" ] || fail "package version is not $version"
[ "$(dpkg-parsechangelog -l "$changelog" -S Version)" = "$version" ] ||
  fail "the changelog's latest entry is not $version: add one for this version"

echo "lintian:"
lintian --fail-on error "$deb" || fail "lintian reports errors"
exit $failed
