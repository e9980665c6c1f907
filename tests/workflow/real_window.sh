#!/usr/bin/env bash
# The wizard in a real window, worked by keys alone as a user would: search, browse, destination, run, stop and go
# on, stop for good and run again, finish, leave. Ends with a failure if a page or a result does not come.
#
#   real_window.sh VELMORA MAKE_STORE [SCREENSHOTS [HOME_FOLDER]]
#
# VELMORA is the wizard, MAKE_STORE the maker of large stores. With SCREENSHOTS, a folder, each page is photographed;
# HOME_FOLDER is then what the pictures show as the user's own folder, and must not exist yet. Pictures take
# ImageMagick.
set -euo pipefail

for tool in Xvfb openbox xdotool xprop; do
  command -v "$tool" >/dev/null || { echo "real_window: $tool is missing" >&2; exit 1; }
done
velmora=$1 make_store=$2 shots=${3:-}
limit=120  # seconds for anything to come

work=$(mktemp -d)
home=${4:-$work/home}
started=()
tidy_up() {
  local process
  for process in "${started[@]}"; do kill "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work" "$home"
}
[ ! -e "$home" ] || { echo "real_window: there is a $home already" >&2; exit 1; }
trap tidy_up EXIT

fail() {
  echo "real_window: $*; on the screen are:" >&2
  local window
  for window in $(xdotool search --onlyvisible --name . 2>/dev/null); do
    echo "  $(xdotool getwindowname "$window" 2>/dev/null) ($(role_of "$window"))" >&2
  done
  cat "$work/velmora.log" >&2
  [ -z "$shots" ] || import -window root "$shots/failure.png"
  exit 1
}

# until_so WHAT COMMAND...: waits until the command succeeds.
until_so() {
  local what=$1 end=$((SECONDS + limit))
  shift
  until "$@" >/dev/null 2>&1; do
    [ "$SECONDS" -lt "$end" ] || fail "$what did not come"
    sleep 0.05
  done
}

# by_key KEYS WHAT COMMAND...: presses the keys until the command succeeds. A window that has only just come up may
# miss the first press, so they are pressed anew from time to time; no page takes what it already did amiss.
by_key() {
  local keys=$1 what=$2 end=$((SECONDS + limit)) next
  shift 2
  while true; do
    xdotool key --clearmodifiers "$keys"
    next=$((SECONDS + 4))
    while [ "$SECONDS" -lt "$next" ]; do
      if "$@" >/dev/null 2>&1; then return 0; fi
      sleep 0.05
    done
    [ "$SECONDS" -lt "$end" ] || fail "$what did not come by $keys"
  done
}

# Pages tell their class as the role of their window; dialogs and boxes have none, but a title.
role_of() { xprop -id "$1" WM_WINDOW_ROLE 2>/dev/null | sed -n 's/.* = "\(.*\)"$/\1/p'; }
on_page() {
  local window
  window=$(xdotool getactivewindow 2>/dev/null) && [ "$(role_of "$window")" = "$1" ]
}
in_dialog() {
  local window
  window=$(xdotool getactivewindow 2>/dev/null) && [ -z "$(role_of "$window")" ] &&
    [[ $(xdotool getwindowname "$window") =~ $1 ]]
}
place_of() {
  xwininfo -id "$1" | awk '/Absolute upper-left X/ { x = $NF } /Absolute upper-left Y/ { print x "," $NF }'
}
# The pages take turns in one window, and it stays where the user put it.
stays() {
  local now
  now=$(xdotool getactivewindow)
  [ "$now" = "$window" ] || fail "the $1 stands in a window of its own"
  [ "$(place_of "$now")" = "$place" ] || fail "with the $1 the window jumped from $place to $(place_of "$now")"
}
left() { ! on_page "$1" && xdotool getactivewindow; }
menu_is_open() { [ "$(xdotool search --onlyvisible --class velmora 2>/dev/null | wc -l)" -gt 1 ]; }

# A machine of its own: settings, folders, and a shell that writes down what it is to open.
mkdir -p "$work/run" "$work/bin" "$home/Documents" "$home/Mail"
chmod 700 "$work/run"
export HOME=$home XDG_RUNTIME_DIR=$work/run XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
export QT_QPA_PLATFORM=xcb PATH=$work/bin:$PATH
unset WAYLAND_DISPLAY
printf '#!/bin/sh\necho "$1" >>"%s/opened"\n' "$work" >"$work/bin/xdg-open"
chmod +x "$work/bin/xdg-open"
touch "$work/opened" "$work/velmora.log"
"$make_store" --small --items 30000 0 "$home/Mail/outlook.ost" >/dev/null

# The display, and a window manager, without which no window is ever active.
display_number() {
  read -r number <"$work/display" && [ -n "$number" ]
}
: >"$work/display"
exec 3>"$work/display"
Xvfb -displayfd 3 -screen 0 1400x1000x24 -nolisten tcp 2>"$work/xvfb.log" &
started+=($!)
until_so "the display" display_number
export DISPLAY=:$number
mkdir -p "$work/config/openbox" "$home/.themes/Plain/openbox-3"
cat >"$work/config/openbox/rc.xml" <<'END'
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus>
  <placement><policy>Smart</policy><center>yes</center></placement>
  <theme><name>Plain</name><titleLayout>NLIC</titleLayout></theme>
  <keyboard><keybind key="A-F4"><action name="Close"/></keybind></keyboard>
</openbox_config>
END
cat >"$home/.themes/Plain/openbox-3/themerc" <<'END'
border.width: 1
border.color: #9FB0C8
padding.width: 8
padding.height: 7
window.client.padding.width: 0
window.client.padding.height: 0
window.*.title.separator.color: #D5DEEB
window.*.title.bg: flat solid
window.*.title.bg.color: #E9EEF6
window.*.label.bg: parentrelative
window.active.label.text.color: #14284A
window.inactive.label.text.color: #7688A6
window.*.handle.width: 0
window.*.button.*.bg: parentrelative
window.*.button.*.image.color: #4A5D7E
END
openbox >"$work/openbox.log" 2>&1 &
started+=($!)
until_so "the window manager" xdotool get_desktop
xdotool mousemove 1398 998

# A picture of the active window with its frame and whatever lies over it, once it has come to rest.
shot() {
  [ -n "$shots" ] || return 0
  local window x y width height left right top bottom before='' now
  window=$(xdotool getactivewindow)
  read -r x y width height < <(xwininfo -id "$window" | awk '
    /Absolute upper-left X/ { x = $NF } /Absolute upper-left Y/ { y = $NF } / Width:/ { w = $NF }
    / Height:/ { print x, y, w, $NF }')
  IFS=', ' read -r left right top bottom < <(xprop -id "$window" _NET_FRAME_EXTENTS | sed 's/.* = //')
  for _ in $(seq 30); do
    import -window root -crop \
      "$((width + left + right))x$((height + top + bottom))+$((x - left))+$((y - top))" +repage "$shots/$1.png"
    now=$(identify -format '%#' "$shots/$1.png")
    if [ "$now" = "$before" ]; then return 0; fi
    before=$now
    sleep 0.1
  done
}

"$velmora" 2>"$work/velmora.log" &
velmora_process=$!
started+=($velmora_process)
until_so "the start page" on_page CCustomDlg
shot start
window=$(xdotool getactivewindow)
before=$(place_of "$window")
xdotool windowmove "$window" 60 40
moved() { place=$(place_of "$window") && [ "$place" != "$before" ]; }
until_so "the window's new place" moved

# A second start shows its box, which has the program's icon and room for its title, and ends; the first goes on.
"$velmora" 2>>"$work/velmora.log" &
second=$!
started+=($second)
until_so "the box of a second start" in_dialog '^Error$'
box=$(xdotool getactivewindow)
shot second-start
[ "$(xwininfo -id "$box" | awk '/ Width:/ { print $NF }')" -ge 160 ] || fail "the box of a second start cuts its title"
[[ $(xprop -id "$box" _NET_WM_ICON) == *Icon* ]] || fail "the box of a second start has no icon"
by_key Return "the start page" on_page CCustomDlg
code=0
wait "$second" || code=$?
[ "$code" -eq 0 ] || fail "the second start ended with $code"
kill -0 "$velmora_process" || fail "the second start ended the first"
stays "start page"

# A search: the drive is typed over, the hit chosen by the keyboard, until the choice leads on.
by_key alt+f "the find page" on_page CFindPstDlg
stays "find page"
xdotool key Tab key shift+Tab key ctrl+a
xdotool type --delay 10 "$home/Mail"
xdotool key alt+d
choose_and_go_on() {
  xdotool key Tab key Home
  sleep 0.3
  shot find
  xdotool key alt+n
  sleep 0.3
  on_page CCustom2Dlg
}
until_so "a choice of what was found" choose_and_go_on
by_key alt+b "the find page" on_page CFindPstDlg

# The menu of a page.
by_key alt+e "the menu" menu_is_open
shot menu
by_key a "the about window" in_dialog '^About '
shot about
by_key Escape "the find page" on_page CFindPstDlg
by_key alt+b "the start page" on_page CCustomDlg

# pick PAGE TITLE NAME: types a name into the dialog behind "Browse...". What is typed may be lost in a dialog that
# has only just come up; it refuses what is left of the name then, and is asked again.
pick() {
  local page=$1 title=$2 name=$3 end
  for _ in 1 2 3 4 5; do
    by_key alt+r "the dialog" in_dialog "$title"
    xdotool key ctrl+a
    xdotool type --delay 10 "$name"
    xdotool key Return
    end=$((SECONDS + 4))
    while [ "$SECONDS" -lt "$end" ]; do
      if on_page "$page"; then return 0; fi
      sleep 0.05
    done
    by_key Escape "the page" on_page "$page"
  done
  fail "the dialog did not take $name"
}

# From the start page to the run.
convert() {
  by_key alt+s "the browse page" on_page CSelectPstDlg
  stays "browse page"
  pick CSelectPstDlg '^Velmora' "$home/Mail/outlook.ost"
  shot browse
  by_key alt+n "the destination page" on_page CCustom2Dlg
  stays "destination page"
  pick CCustom2Dlg '^Select destination path' "$home/Documents"
  shot destination
  by_key alt+c "the progress page" left CCustom2Dlg
  until_so "the progress page" on_page CProgressDlg
  stays "progress page"
}

# Stop and go on, then stop for good.
convert
by_key alt+c "the stop question" in_dialog '^Confirmation$'
shot stop
by_key alt+n "the progress page" on_page CProgressDlg
shot progress
until_so "the new store" test -s "$home/Documents/outlook Converted0/outlook Converted.pst"
by_key alt+c "the stop question" in_dialog '^Confirmation$'
by_key alt+y "the place of the store" in_dialog '^Information$'
shot stopped
by_key Return "the start page" on_page CCustomDlg
stays "start page after a stop"
[ ! -s "$work/opened" ] || fail "a stopped run opened $(cat "$work/opened")"

# Again from the start, to the end. The folder of the first run would be in the way.
mv "$home/Documents/outlook Converted0" "$work/stopped"
convert
until_so "the end of the run" test -s "$work/opened"
shot finished
folder=$(cat "$work/opened")
[ "$folder" = "$home/Documents/outlook Converted0" ] || fail "the wrong folder was opened: $folder"
[ -s "$folder/outlook Converted.pst" ] || fail "there is no store in $folder"
[ ! -e "$folder/FirstTableItem.dat" ] || fail "the index was left behind"
by_key alt+f "the start page" on_page CCustomDlg
stays "start page after a run"

# The close box asks, and Yes ends the process.
by_key alt+F4 "the exit question" in_dialog '^Information$'
shot exit
gone() { ! kill -0 "$velmora_process"; }
by_key alt+y "the end" gone
code=0
wait "$velmora_process" || code=$?
[ "$code" -eq 0 ] || fail "the program ended with $code"
echo "real_window: all pages, $(stat -c %s "$folder/outlook Converted.pst") bytes written"
