# Completion of cindermill-batch for bash.

# Files of some endings, and folders on the way to them.
_cindermill_batch_files() {
    local ending
    mapfile -t COMPREPLY < <(
        compgen -d -- "$word"
        for ending in "$@"; do
            compgen -f -X "!*.$ending" -- "$word"
        done
    )
    compopt -o filenames 2>/dev/null
}

_cindermill_batch() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local commands="types check lint report dump export run replay efx translate image resave hash text diff picture sheet help"
    local command="" options="" i
    COMPREPLY=()

    # The first word that is neither an option of the program's nor what stands behind one.
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
            --node-types | --resources | --project) ((++i)) ;;
            *)
                command=${COMP_WORDS[i]}
                break
                ;;
        esac
    done

    case $before in
        --node-types | --resources)
            mapfile -t COMPREPLY < <(compgen -d -- "$word")
            compopt -o filenames 2>/dev/null
            return
            ;;
        --project)
            _cindermill_batch_files toml
            return
            ;;
    esac
    if [ -z "$command" ]; then
        mapfile -t COMPREPLY < <(
            compgen -W "$commands --node-types --resources --project --help --version" -- "$word"
        )
        return
    fi

    case $command:$before in
        check:--format | replay:--format | lint:--format | report:--format | types:--format)
            mapfile -t COMPREPLY < <(compgen -W "text json junit sarif" -- "$word")
            return
            ;;
        diff:--format)
            mapfile -t COMPREPLY < <(compgen -W "text json" -- "$word")
            return
            ;;
        *:--fail-on)
            mapfile -t COMPREPLY < <(compgen -W "warning error" -- "$word")
            return
            ;;
        image:--format)
            mapfile -t COMPREPLY < <(compgen -W "0 1 2 3 4 5 6" -- "$word")
            return
            ;;
        export:--depfile)
            _cindermill_batch_files d
            return
            ;;
        run:--frames | run:--dt | run:--seed | replay:--frames | replay:--dt | replay:--seed) return ;;
        lint:--seconds | lint:--seeds) return ;;
        picture:--* | sheet:--*) [ "$before" = --plain ] || return ;;
    esac

    case $command in
        types) options="--format --fail-on" ;;
        check) options="--format --fail-on --stale --list-dependencies --verbose" ;;
        lint) options="--format --fail-on --seconds --seeds --suggest-box --budgets" ;;
        report) options="--format --fail-on" ;;
        export) options="--depfile --fail-on --verbose" ;;
        run) options="--frames --dt --seed" ;;
        replay) options="--frames --dt --seed --format --fail-on" ;;
        diff) options="--format" ;;
        picture) options="--frame --frames --sheet --turntable --seed --camera --size --background --plain" ;;
        sheet) options="--frame --sheet --seed --camera --size --background --plain" ;;
        translate) options="--raw" ;;
        image) options="--format" ;;
        help)
            mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word")
            return
            ;;
    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        return
    fi
    case $command in
        check | lint | report | dump | run | replay | resave | text | diff) _cindermill_batch_files effect ;;
        picture) _cindermill_batch_files effect png ;;
        sheet) _cindermill_batch_files png ;;
        export) _cindermill_batch_files effect efx ;;
        efx) _cindermill_batch_files efx ;;
        translate) _cindermill_batch_files sho ;;
        image) _cindermill_batch_files dds hvt ;;
    esac
}

complete -F _cindermill_batch cindermill-batch
