# Completions of quillon for bash. Titles aren't completed: that would need the password.

_quillon_global='--store --vault --password-file --password-fd --password-stdin --json --lang --help'

# What a vault takes; a template there is of others, too.
_quillon_categories='login secure-note credit-card identity password bank-account database driver-license
  email membership outdoor-license passport reward-program router server
  social-security-number software-license'
_quillon_others='document api-credential medical-record ssh-key crypto-wallet'

# The options of one command, its own first.
_quillon_options() {
  case $1 in
    init) echo "--hint $_quillon_global" ;;
    import) echo "--dry-run $_quillon_global" ;;
    export) echo "--plaintext --force $_quillon_global" ;;
    history | conflicts) echo "--reveal $_quillon_global" ;;
    copy)
      echo "--to --to-store --to-password-file --to-password-fd --to-password-stdin $_quillon_global"
      ;;
    merge)
      echo "--dry-run --other-vault --other-password-file --other-password-fd --other-password-stdin \
$_quillon_global"
      ;;
    resolve) echo "--keep --field $_quillon_global" ;;
    list)
      echo "--trashed --category --tag --folder --favorites --not-nested --sort --sections --long \
$_quillon_global"
      ;;
    find)
      echo "--title --words --contents --where --url --category --tag --folder --favorites" \
        "--not-nested --long $_quillon_global"
      ;;
    for) echo "--category --tag --folder --favorites --not-nested --long $_quillon_global" ;;
    favorite) echo "--off $_quillon_global" ;;
    move | folder-move) echo "--to-top $_quillon_global" ;;
    tag-remove) echo "--all --nested $_quillon_global" ;;
    folder-list | smart-list) echo "--long $_quillon_global" ;;
    smart-show) echo "--sort --sections --long $_quillon_global" ;;
    check) echo "--repair $_quillon_global" ;;
    show) echo "--reveal --field $_quillon_global" ;;
    login)
      echo "--title --username --url --notes --tag --password --generate --favorite $_quillon_global"
      ;;
    add)
      echo "--title --set --set-file --add-field --notes --tag --generate --favorite" \
        "$_quillon_global"
      ;;
    edit)
      echo "--set --set-file --add-field --unset --tag --untag --favorite --no-favorite --generate" \
        "$_quillon_global"
      ;;
    delete) echo "--force $_quillon_global" ;;
    passwd)
      echo "--new-password-file --new-password-fd --new-password-stdin $_quillon_global"
      ;;
    generate)
      echo "--length --no-symbols --no-digits --avoid-ambiguous --words --separator --pin --count \
$_quillon_global"
      ;;
    pick)
      echo "--category --tag --folder --favorites --not-nested --print --copy --clipboard --clear" \
        "$_quillon_global"
      ;;
    shell) echo "--idle --no-history $_quillon_global" ;;
    otp) echo "--qr --at --url --url-file $_quillon_global" ;;
    vault-add)
      echo "--own-password --own-password-file --own-password-fd --own-password-stdin --hint \
$_quillon_global"
      ;;
    vault-icon) echo "--set --save --clear $_quillon_global" ;;
    vault-color) echo "--clear $_quillon_global" ;;
    '') echo "--version $_quillon_global" ;;
    *) echo "$_quillon_global" ;;
  esac
}

# The command on the line so far: "login" for "add login", "vault-icon" for "vault icon" and its
# like, nothing if there is none yet.
_quillon_command() {
  local i word command=
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    case $word in
      --store | --vault | --password-file | --password-fd | --lang) ((i++)) ;;
      -*) ;;
      login)
        [[ $command == add ]] && command=login
        ;;
      *)
        case $command in
          '') command=$word ;;
          vault | tag | folder | smart) command=$command-$word ;;
        esac
        ;;
    esac
  done
  echo "$command"
}

_quillon() {
  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command words
  command=$(_quillon_command)
  COMPREPLY=()
  # They take a value elsewhere.
  [[ $command == find && ($before == --title || $before == --words) ]] && before=
  case $before in
    --store | --password-file | --new-password-file | --own-password-file | --url-file | --save | \
      --to-store | --to-password-file | --other-password-file)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return
      ;;
    --set)
      if [[ $command == vault-icon ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
      fi
      words='title= username= url= notes= password password=-'
      ;;
    --category) words="$_quillon_categories $_quillon_others" ;;
    --lang) words='ar de en es fr ja pt' ;;
    --sort) words='title updated created category strength' ;;
    --keep) words='mine theirs' ;;
    --clipboard) words='terminal wl-copy xclip xsel pbcopy' ;;
    --print) words='title username password url notes otp' ;;
    --field)
      [[ $command == resolve ]] && return
      words='title username password url notes'
      ;;
    --hint | --title | --username | --url | --notes | --length | --count | --vault | --words | \
      --separator | --pin | --at | --to | --other-vault | --where | --folder | --idle | *-fd)
      return
      ;;
    --set-file | --add-field | --unset | --tag | --untag) return ;;
    *)
      case $current in
        -*) words=$(_quillon_options "$command") ;;
        *)
          case $command in
            '')
              words='init import export list find for show add edit trash restore delete favorite move
                tag folder smart history duplicate copy fingerprint categories template passwd info
                check backup merge conflicts resolve vault otp generate pick shell completion'
              ;;
            add) words=$_quillon_categories ;;
            vault) words='list add icon color' ;;
            tag) words='list add remove rename' ;;
            folder) words='list add move rename delete' ;;
            smart) words='list add show delete' ;;
            template) words="$_quillon_categories $_quillon_others" ;;
            completion) words='bash zsh fish' ;;
            import | export | backup | merge)
              compopt -o filenames 2>/dev/null
              mapfile -t COMPREPLY < <(compgen -f -- "$current")
              return
              ;;
          esac
          ;;
      esac
      ;;
  esac
  [[ $before == --set ]] && compopt -o nospace 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _quillon quillon
