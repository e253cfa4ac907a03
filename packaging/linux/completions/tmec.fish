# Completion of tmec in fish: commands, options and their values are those that the program's own help names.

# What is offered for a name that the help gives: the words of "ini|reg" or "json", files for what can be one.
function __tmec_offer --argument-names name current before
    switch $name
        case SECTION KEY 'VALUE*' ''
        case '*'
            if string match --quiet --regex '^[a-z0-9]' -- $name
                printf '%s\n' $before(string split '|' -- $name)
                return
            end
            __fish_complete_path $current | string replace --regex -- '^' "$before"
    end
end

function __tmec_commands
    set --local program (commandline --current-process --tokenize)[1]
    string replace --filter --regex '^  ([a-z]+) +(.*)' '$1\t$2' -- (eval $program --help 2>/dev/null)
    printf '%s\t%s\n' --help 'how it is used' --version 'the version'
end

function __tmec_arguments
    set --local words (commandline --current-process --cut-at-cursor --tokenize)
    set --local current (commandline --current-token --cut-at-cursor)
    set --local names # of options
    set --local values # of the same ones, what they take
    set --local offered # with their descriptions
    set --local operands
    for line in (eval $words[1] $words[2] --help 2>/dev/null)
        if string match --quiet --regex '^  (?<letter>-.)?,? +(?<name>--[a-z0-9-]+)(?: (?<value>[^ ]+))?(?:  +(?<help>.*)|$)' -- $line
            for option in $letter $name
                set --append names $option
                set --append values "$value"
                set --append offered $option\t$help
            end
        else if string match --quiet --regex "^Usage: tmec $words[2] \[[^]]*\] (?<rest>.*)" -- $line
            set operands (string split ' ' -- (string replace --all --regex '[][]' '' -- $rest))
        end
    end

    set --local given 0
    set --local taking '' # what the option before takes
    for word in $words[3..]
        if test -n "$taking"
            set taking ''
        else if set --local at (contains --index -- $word $names)
            set taking $values[$at]
        else if not string match --quiet --regex '^-.' -- $word
            set given (math $given + 1)
        end
    end
    if test -n "$taking"
        __tmec_offer $taking $current ''
    else if string match --quiet --regex '^(?<name>--[a-z0-9-]+)=(?<begun>.*)' -- $current
        set --local at (contains --index -- $name $names)
        and __tmec_offer "$values[$at]" "$begun" "$name="
    else if string match --quiet --regex '^-' -- $current
        printf '%s\n' $offered
    else if test $given -lt (count $operands)
        __tmec_offer $operands[(math $given + 1)] $current ''
    else if string match --quiet '*…' -- $operands[-1]
        __tmec_offer FILE $current ''
    end
end

set --local command_missing 'test (count (commandline --current-process --cut-at-cursor --tokenize)) -lt 2'
complete --command tmec --no-files --condition $command_missing --arguments '(__tmec_commands)'
complete --command tmec --no-files --condition "not $command_missing" --arguments '(__tmec_arguments)'
