# Completion of kyr for bash: kyr itself knows what may stand where.
_kyr() {
    local cur prev words cword line option= kyr
    _init_completion -n =: || return
    # Only what stands behind "=" is replaced.
    [[ $cur != --*=* ]] || option=${cur%%=*}=
    cur=${cur#"$option"}
    # Not what happens to be called kyr in the current folder.
    kyr=${words[0]/#\~\//$HOME/}
    [[ $kyr == /* ]] || kyr=kyr
    while IFS= read -r line; do
        case $line in
            :files) _filedir ;;
            :folders) _filedir -d ;;
            *)
                line=${line%%$'\t'*}
                COMPREPLY+=("${line#"$option"}")
                # It goes on behind the dot.
                [[ $line != *. ]] || compopt -o nospace
                ;;
        esac
    done < <("$kyr" __complete "${words[@]:1:cword}" 2>/dev/null)
    __ltrim_colon_completions "$cur"
} &&
    complete -F _kyr kyr
