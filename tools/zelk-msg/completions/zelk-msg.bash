# Completion of zelk-msg for bash.

_zelk_msg()
{
    local current=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD - 1]}
    local general="--color --memory-limit --help --version"
    local kinds="StateCommand StateCommandWithEventId RegisterCommand UnregisterCommand
        EnableLogModeCommand CreateSubscriberCommand DeleteSubscriberCommand
        NormalGlobalEventCommand-6 NormalGlobalEventCommand-10 StateResponse MetaDataResponse
        RegisterMessageQueueResponse XmlAttrToEventMappingResponse StateSpaceMetaDataResponse
        InfoResponse InfraMetaDataAppInfo InfoRequestData InfoResponseData"
    local command="" word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $word in
            show | check | diff | graph | sequence | make | kinds)
                command=$word
                break
                ;;
        esac
    done

    COMPREPLY=()
    case $previous in
        --color)
            COMPREPLY=($(compgen -W "auto always never" -- "$current"))
            return
            ;;
        --kind)
            COMPREPLY=($(compgen -W "$kinds" -- "$current"))
            return
            ;;
        --format)
            local formats="dot mermaid plantuml svg"
            [[ $command == sequence ]] && formats="mermaid text"
            COMPREPLY=($(compgen -W "$formats" -- "$current"))
            return
            ;;
        --memory-limit | --grep | --set | --initial | --number | -j | --jobs)
            return
            ;;
        --svg | --edit)
            COMPREPLY=($(compgen -f -- "$current"))
            return
            ;;
    esac

    local options
    case $command in
        show) options="--kind --grep --stats --json --follow" ;;
        check) options="--strict --jobs --quiet" ;;
        diff) options="--quiet" ;;
        graph) options="--svg --format --lint --initial --number" ;;
        sequence) options="--format" ;;
        make) options="--set --edit --indent" ;;
        kinds) options="" ;;
        *)
            COMPREPLY=($(compgen -W "show check diff graph sequence make kinds $general" -- "$current"))
            return
            ;;
    esac
    if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "$options $general" -- "$current"))
    elif [[ $command == make || $command == kinds ]]; then
        COMPREPLY=($(compgen -W "$kinds" -- "$current"))
    else
        COMPREPLY=($(compgen -f -- "$current"))
    fi
}

complete -o filenames -F _zelk_msg zelk-msg
