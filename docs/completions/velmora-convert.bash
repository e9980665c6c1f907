# Completion of velmora-convert for bash.

_velmora_convert() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  case $previous in
    --codepage)
      mapfile -t COMPREPLY < <(compgen -W "windows-1250 windows-1251 windows-1252 windows-1253 windows-1254 windows-1255 windows-1256 windows-1257 windows-874 windows-932 windows-936 windows-949 windows-950 utf-8" -- "$current")
      return
      ;;
    --report | --trace)
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return
      ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "--complete --hidden --deleted --verify --at --smart --jobs --codepage --report --trace --dry-run --log --quiet --no-progress --help --version" -- "$current")
    return
  fi
  mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

complete -o filenames -F _velmora_convert velmora-convert
