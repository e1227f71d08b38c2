# Writes the layout of the interface's records and the values of its enumerations as JSON, from the debug information of
# layout.cpp as readelf prints it: a line with the depth, the place and the tag of each entry, then one for each of its
# attributes. Variables: version, soname, byteOrder.

/^   Pointer Size:/ { pointerSize = $3 }
/^ <[0-9a-f]+><[0-9a-f]+>: .*DW_TAG_/ {
    split($1, place, /[<>]+/)
    depth = place[2] + 0
    entry = place[3]
    tag[entry] = $0
    sub(/.*DW_TAG_/, "", tag[entry])
    sub(/\).*/, "", tag[entry])
    above[depth] = entry
    if (depth > 0) {
        parent = above[depth - 1]
        child[parent, ++children[parent]] = entry
    }
    if (depth == 1) topmost[++entries] = entry
    next
}
# A text follows the place from which it was fetched.
/DW_AT_name/ { name[entry] = value($0); sub(/^\(.*\): /, "", name[entry]) }
/DW_AT_type/ { type[entry] = value($0); gsub(/[<>]|0x/, "", type[entry]) }
/DW_AT_byte_size/ { size[entry] = value($0) + 0 }
/DW_AT_encoding/ { encoding[entry] = value($0) }
/DW_AT_data_member_location/ { offset[entry] = value($0) + 0 }
/DW_AT_const_value/ { constant[entry] = value($0) }
/DW_AT_upper_bound/ { count[entry] = value($0) + 1 }
/DW_AT_count/ { count[entry] = value($0) + 0 }

END {
    for (i = 1; i <= entries; ++i) {
        if (tag[topmost[i]] == "structure_type" && children[topmost[i]]) structures[name[topmost[i]]] = topmost[i]
    }
    model = structures["DataModel"]
    if (!model) fail("the debug information has no DataModel")
    printf "{\n\t\"version\": \"%s\",\n\t\"library\": \"%s\",\n", version, soname
    printf "\t\"byteOrder\": \"%s\",\n\t\"pointerSize\": %d,\n\t\"longSize\": %d,\n", byteOrder,
        pointerSize, sizeOf(type[child[model, 1]])

    printf "\t\"records\": {"
    for (i = 1; i <= entries; ++i) {
        if (tag[topmost[i]] == "structure_type" && name[topmost[i]] ~ /^KelvarisSDK_/) writeRecord(topmost[i])
    }
    printf "\n\t},\n\t\"enumerations\": {"
    separator = ""
    for (i = 1; i <= entries; ++i) {
        if (tag[topmost[i]] == "enumeration_type" && name[topmost[i]] ~ /^KelvarisSDK_/) writeEnumeration(topmost[i])
    }
    printf "\n\t}\n}\n"
}

function value(line) {
    sub(/^[^:]*: /, "", line)
    sub(/[ \t]+$/, "", line)
    return line
}

function fail(message) {
    print "layout.awk: " message >"/dev/stderr"
    exit 1
}

# What a type is behind its other names.
function bare(t) {
    while (tag[t] == "typedef" || tag[t] == "const_type" || tag[t] == "volatile_type") t = type[t]
    return t
}

# A union is shown as its member of the widest numbers, which has the union's alignment.
function shown(t,    i, member, width, widest, found) {
    t = bare(t)
    if (tag[t] != "union_type") return t
    for (i = 1; i <= children[t]; ++i) {
        member = bare(type[child[t, i]])
        width = size[tag[member] == "array_type" ? bare(type[member]) : member]
        if (width > widest) {
            widest = width
            found = member
        }
    }
    return found
}

function sizeOf(t,    i, elements) {
    t = bare(t)
    if (tag[t] == "pointer_type") return pointerSize
    if (tag[t] != "array_type") return size[t]
    elements = 1
    for (i = 1; i <= children[t]; ++i) elements *= count[child[t, i]]
    return elements * sizeOf(type[t])
}

# Records and enumerations have their names, numbers a name that is the same on all machines.
function typeName(t) {
    t = bare(t)
    if (tag[t] == "array_type") return typeName(type[t])
    if (tag[t] == "pointer_type") return "pointer"
    if (tag[t] == "structure_type" || tag[t] == "enumeration_type") return name[t]
    if (encoding[t] ~ /boolean/) return "bool"
    if (encoding[t] ~ /float/) return size[t] == 4 ? "float" : "double"
    if (name[t] == "char") return "char"
    if (encoding[t] ~ /unsigned/) return "uint" 8 * size[t] "_t"
    if (encoding[t] ~ /signed/) return "int" 8 * size[t] "_t"
    fail("a field's type can't be told: " tag[t] " " name[t])
}

# A record of the system's stands in front of the first one of ours that holds it.
function writeRecord(record,    i, field, t, dimensions, inner, text) {
    if (record in written || !children[record]) return
    written[record] = 1
    for (i = 1; i <= children[record]; ++i) {
        t = bare(type[child[record, i]])
        if (tag[t] == "array_type") t = bare(type[t])
        if (tag[t] == "structure_type") writeRecord(t)
    }
    for (i = 1; i <= children[record]; ++i) {
        field = child[record, i]
        if (tag[field] != "member") continue
        text = text (text ? "," : "") sprintf("\n\t\t\t\t{\"name\": \"%s\", \"offset\": %d, \"size\": %d, \"type\": \"%s\"%s}",
            name[field], offset[field], sizeOf(type[field]), typeName(shown(type[field])), dimensionsOf(shown(type[field])))
    }
    printf "%s\n\t\t\"%s\": {\n\t\t\t\"size\": %d,\n\t\t\t\"fields\": [%s\n\t\t\t]\n\t\t}",
        separator, name[record], size[record], text
    separator = ","
}

function dimensionsOf(t,    i, text) {
    t = bare(t)
    if (tag[t] != "array_type") return ""
    for (i = 1; i <= children[t]; ++i) text = text (i > 1 ? ", " : "") count[child[t, i]]
    return ", \"dimensions\": [" text "]"
}

function writeEnumeration(enumeration,    i) {
    printf "%s\n\t\t\"%s\": {\n\t\t\t\"size\": %d,\n\t\t\t\"values\": {", separator, name[enumeration], size[enumeration]
    separator = ","
    for (i = 1; i <= children[enumeration]; ++i) {
        printf "%s\n\t\t\t\t\"%s\": %s", (i > 1 ? "," : ""), name[child[enumeration, i]], constant[child[enumeration, i]]
    }
    printf "\n\t\t\t}\n\t\t}"
}
