index($0, sprintf("%c", 92)) { next } # a text with an escape would have to be decoded
{
    for (line = $0; match(line, /"[^"]*"|[0-9]+/); line = behind) {
        token = substr(line, RSTART, RLENGTH)
        behind = substr(line, RSTART + RLENGTH)
        gsub(/"/, "", token)
        if (behind ~ /^ :/) key = token
        else if (key == "port") port = token
        else if (key == wanted) print (wanted == "protocol" ? port "/" token : token)
    }
}
