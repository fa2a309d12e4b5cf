# Completion of zelstory for bash. A test compares it with zelstory COMMAND --help.

_zelstory_files() { # PATTERN WORD: files like that and folders; all files where there are none
  compopt -o filenames 2>/dev/null
  local extglob
  extglob=$(shopt -p extglob)
  shopt -s extglob
  mapfile -t COMPREPLY < <(compgen -f -X "!$1" -- "$2"; compgen -d -- "$2")
  $extglob
  [ ${#COMPREPLY[@]} -gt 0 ] || mapfile -t COMPREPLY < <(compgen -f -- "$2")
}

_zelstory_clips() { # WORD: any file; which are clips is the tool's own table
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_zelstory() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} options="" i positionals=0
  local scripts="*.@(fountain|spmd|txt|fdx|quor)"
  local edit="--dry-run --diff --force --no-wait --sidecar-name"
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    options="check show write tag clear has xmp shots scenes characters stats report convert dump"
    [[ $word != -* ]] || options="--help --version"
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    return
  fi

  case $previous in
    --sidecar-name) mapfile -t COMPREPLY < <(compgen -W "full stem" -- "$word"); return ;;
    --format | --to) mapfile -t COMPREPLY < <(compgen -W "story fountain fdx" -- "$word"); return ;;
    --headings)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -W "common exact" -- "$word"; compgen -f -- "$word")
      return
      ;;
    --table) _zelstory_files "*.csv" "$word"; return ;;
    --html) _zelstory_files "*.html" "$word"; return ;;
    --out | --clips) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- "$word"); return ;;
    --scene | --position | --id) return ;;
  esac
  if [[ $word == -* ]]; then
    case $command in
      check) options="--format --headings --strict --json" ;;
      xmp) options="--json --sidecar-name" ;;
      show) options="--format --scene --position --id --comments --json" ;;
      write) options="--format --scene --position --id --merge --headings $edit" ;;
      tag) options="--format --table --clips --keep-going --merge --headings $edit --json" ;;
      clear) options="$edit --strict" ;;
      has) options="--sidecar-name --strict" ;;
      report) options="--format --html --title --headings" ;;
      shots) options="--format --out --force --headings" ;;
      scenes) options="--format --headings --csv --raw --bom --json" ;;
      characters | stats) options="--format --csv --raw --bom --json" ;;
      convert) options="--format --to --out --force" ;;
      dump) options="--format" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$options --help" -- "$word")
    return
  fi

  for ((i = 2; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      --format | --to | --sidecar-name | --headings | --table | --clips | --out | --html | --scene | --position | --id) ((++i)) ;;
      -?*) ;;
      *) ((++positionals)) ;;
    esac
  done
  case $command in
    check | shots | convert) _zelstory_files "$scripts" "$word" ;;
    clear | has) _zelstory_clips "$word" ;;
    xmp) [ $positionals -ne 0 ] || _zelstory_clips "$word" ;;
    write | tag | show | scenes | characters | stats | report | dump)
      [ $positionals -ne 0 ] || _zelstory_files "$scripts" "$word"
      [ "$command/$positionals" != write/1 ] || _zelstory_clips "$word"
      ;;
  esac
}

complete -F _zelstory zelstory
