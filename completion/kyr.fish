# Completion of kyr for fish: kyr itself knows what may stand where.
function __kyr_complete
    set -l last (commandline -ct)
    set -l words (commandline -opc) "$last"
    # Not what happens to be called kyr in the current folder.
    set -l kyr (string replace -r '^~/' "$HOME/" -- $words[1])
    string match -q '/*' -- $kyr; or set kyr kyr
    for line in ($kyr __complete $words[2..-1] 2>/dev/null)
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
