# Completion of sayvane(1) for bash.
_sayvane()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} verb= i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        --profile | --service | --store-secret) ((i++)) ;;
        -*) ;;
        *)
            verb=${COMP_WORDS[i]}
            break
            ;;
        esac
    done
    local words="--help --version --profile --service --store-secret"
    case $previous in
    --profile | --service) return ;;
    --store-secret) words="groq_api_key openai_api_key sayvane_session" ;;
    *)
        case $verb in
        "") words+=" toggle start stop cancel status doctor open last transcribe history recover autostart sign-in sign-out quit" ;;
        status) words=--json ;;
        doctor) words="--json --undo" ;;
        autostart) words="on off" ;;
        history) words="--json --csv" ;;
        open) words="dictation insights dictionary labs settings" ;;
        recover)
            words="list transcribe delete failed"
            case $previous in
            failed) words="on off" ;;
            transcribe | delete)
                words=$(sayvane recover 2>/dev/null | cut -d' ' -f1)
                [ "$previous" = delete ] && words+=" --all"
                ;;
            esac
            ;;
        transcribe)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$word" |
                grep -iE '\.(wav|flac|og[ga]|opus|mp3|aiff?|au|caf)$'; compgen -d -- "$word")
            return
            ;;
        *) words= ;;
        esac
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _sayvane sayvane
