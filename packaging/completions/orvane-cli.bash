# Completes orvane-cli in bash. Names on a stranger's disk are data: nothing here evaluates one.

# The words up to the cursor as the shell would read them, into the array `words`; the last one is being typed.
# COMP_WORDS will not do: it is cut at colons and holds quotes.
_orvane_words() {
    local line=${COMP_LINE:0:COMP_POINT} word='' quote='' character i
    local -i is_word=0
    words=()
    for ((i = 0; i < ${#line}; i++)); do
        character=${line:i:1}
        if [[ $quote == "'" ]]; then
            if [[ $character == "'" ]]; then quote=''; else word+=$character; fi
        elif [[ $quote == '"' ]]; then
            if [[ $character == '"' ]]; then
                quote=''
            elif [[ $character == \\ && ${line:i+1:1} == [\"\\\$\`] ]]; then
                ((++i))
                word+=${line:i:1}
            else
                word+=$character
            fi
        elif [[ $character == [\'\"] ]]; then
            quote=$character
            is_word=1
        elif [[ $character == \\ ]]; then
            ((++i))
            word+=${line:i:1}
            is_word=1
        elif [[ $character == [[:space:]] ]]; then
            if ((is_word)) || [[ -n $word ]]; then words+=("$word"); fi
            word=''
            is_word=0
        else
            word+=$character
        fi
    done
    words+=("$word")
}

_orvane_cli() {
    local -a words machine=() candidates=() options=()
    local program=$1 command='' current previous candidate quoted left i
    _orvane_words
    current=${words[-1]}
    previous=${words[-2]-}
    COMPREPLY=()
    # The same word as readline sees it, which may begin later; what stands before is there already.
    left=${current%"$(_orvane_unquoted "$2")"}

    case $previous in
        --root)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$2")
            return
            ;;
        --home | --search | --keep) return ;;
    esac
    for ((i = 1; i < ${#words[@]} - 1; i++)); do
        case ${words[i]} in
            --root | --home)
                machine+=("${words[i]}" "${words[i + 1]/#\~\//$HOME/}")
                ((++i))
                ;;
            --root=* | --home=*) machine+=("${words[i]}") ;;
            --search | --keep) ((++i)) ;;
            -*) ;;
            *) [[ -n $command ]] || command=${words[i]} ;;
        esac
    done
    case $command in
        '')
            options=(--root --home --help --version)
            candidates=(list plan remove disks)
            ;;
        disks) options=(--json --help) ;;
        list) options=(--rescan --search --json --help) ;;
        plan) options=(--why --json --help) ;;
        remove) options=(--permanently --keep --dry-run --yes --json --help) ;;
        *) return ;;
    esac
    if [[ $current == -* ]]; then
        candidates=("${options[@]}")
    elif [[ $command == plan || $command == remove ]]; then
        mapfile -t -d '' candidates < <("$program" "${machine[@]}" complete 2>/dev/null </dev/null)
    fi
    for candidate in "${candidates[@]}"; do
        [[ $candidate == "$current"* ]] || continue
        # Quoted as the person has begun to: what stands before `$2` on the line.
        _orvane_quoted "${COMP_LINE:COMP_POINT - ${#2} - 1:1}" "${candidate#"$left"}"
        COMPREPLY+=("$quoted")
    done
}

# The word as it is written after that character, into `quoted`.
_orvane_quoted() {
    case $1 in
        "'") quoted=${2//\'/\'\\\'\'}\' ;;
        '"')
            quoted=${2//\\/\\\\}
            quoted=${quoted//\"/\\\"}
            quoted=${quoted//\$/\\\$}
            quoted=${quoted//\`/\\\`}
            # No backslash keeps the shell from taking this for a command of before.
            quoted=${quoted//!/\"\'!\'\"}\"
            ;;
        *) printf -v quoted %q "$2" ;;
    esac
}

# A word without the quotes of the shell.
_orvane_unquoted() {
    local -a words
    COMP_LINE=$1 COMP_POINT=${#1} _orvane_words
    printf '%s' "${words[*]}"
}

_orvane() {
    local current=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        --root)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$2")
            ;;
        --appearance) mapfile -t COMPREPLY < <(compgen -W 'light dark system' -- "$current") ;;
        --home) ;;
        *) mapfile -t COMPREPLY < <(compgen -W '--root --home --appearance --help --version' -- "$current") ;;
    esac
}

complete -F _orvane_cli orvane-cli
complete -F _orvane orvane
