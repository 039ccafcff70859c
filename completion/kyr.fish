# Completion of kyr for fish: kyr itself knows what may stand where.
function __kyr_complete
    set -l last (commandline -ct)
    set -l words (commandline -opc) "$last"
    for line in ($words[1] __complete $words[2..-1] 2>/dev/null)
        switch $line
            case :files
                __fish_complete_path "$last"
            case :folders
                __fish_complete_directories "$last"
            case '*'
                echo $line
        end
    end
end
complete -c kyr -f -a '(__kyr_complete)'
