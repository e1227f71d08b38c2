# Turns the headers into what Doxygen is to read of them. The headers' own comments are for people and have few commands.
# Families become groups, as does what a header's head says of them; the conventions become pages; the insides of the C++
# layer and the macros that Doxygen has expanded are left out.

FNR == 1 {
    cpp = FILENAME ~ /\.hpp$/
    name = FILENAME
    sub(/.*\//, "", name)
    sub(/\.h(pp)?$/, "", name)
    conventions = name == "csdkinterface" ? "conventions_c" : name == "kelvarissdk" ? "conventions_cpp" : ""
    group = groupOf(name)
    head = 1
    print "/** @addtogroup " (conventions ? (cpp ? "cpp" : "c") : group)
    next
}

# The head of the file; groups.dox speaks for a group of several headers. The items of a numbered list must begin in one
# column, and their titles stand out.
head && name ~ /^(version|call|await|delivery|result|fields)$/ && !/\*\// { next }
head && / Include (csdkinterface\.h|kelvarissdk\.hpp); it opens/ { skipped = 1; next }
head && skipped && !/\*\// { next }
head && /^ \* CONVENTIONS/ {
    print " * The conventions, which hold for all calls: @ref " conventions "."
    print " */"
    print "/** @page " conventions " Conventions of the " (cpp ? "C++ layer" : "C interface")
    next
}
head && /^ \* +[0-9]+\. / {
    sub(/^ \* +/, " * ")
    if (match($0, /\. [A-Z][A-Za-z ]*\. /) && RLENGTH < 45) {
        start = RSTART + 2
        end = RSTART + RLENGTH - 2
        $0 = substr($0, 1, start - 1) "**" substr($0, start, end - start + 1) "**" substr($0, end + 1)
    }
}
# Lines of code stand deeper than their item; the table of sizes has a page of its own, with more of them.
head && /^ \*         KelvarisSDK_[A-Za-z]+ +[0-9]+/ {
    if (!tabled) print " *     @ref records has them."
    tabled = 1
    next
}
head && conventions && /^ \*         [^ ]/ {
    if (!code) print " *     @code{.c}"
    code = 1
}
head && code && !/^ \*         / {
    print " *     @endcode"
    code = 0
}
head && /\*\// { head = 0; skipped = 0; print; next }
head { print linked($0); next }

# Macros with which a header declares, and the insides of the C++ layer.
/^#define (KELVARISSDK_(API|TAG|UINT32|ENUM)|KELVARIS_EXCEPTIONS)/ { print ""; next }
/^namespace detail \{/ { inside = 1 }
inside { if (/^} \/\/ namespace detail/) inside = 0; print ""; next }
cpp && /^    using Record = / { print ""; next }
cpp && /^    (template <[^>]*> )?static [A-Za-z]+ from\(/ { converter = 1 }
converter { if (/^    }$/) converter = 0; print ""; next }
cpp && /^(private|protected):/ { hidden = 1 }
hidden && /^};/ { hidden = 0 }
hidden { print ""; next }
cpp { sub(/ : protected detail::Caller/, ""); sub(/detail::Awaiter<T> operator/, "auto operator") }

# Each family is a group, and a part of a C header is a titled part of it.
!cpp && /^#define KELVARISSDK_[A-Z]+_H$/ { print "/** @addtogroup " group "\n * @{ */"; next }
!cpp && /^\/\* ---- .* ---- \*\/$/ {
    title = $0
    gsub(/^\/\* ---- | ---- \*\/$/, "", title)
    print (named ? "/** @} */" : "") "/** @name " title "\n * @{ */"
    named = 1
    next
}
!cpp && /^#ifdef __cplusplus/ && named { ending = 1 }
ending { print "/** @} */"; named = 0; ending = 0 }
cpp && /^namespace kelvaris \{/ { print $0 " /** @addtogroup " group "\n * @{ */"; next }
cpp && /^} \/\/ namespace kelvaris/ { print "/** @} */ " $0; next }

# A call of the C++ layer has the words of its function in the C interface.
cpp && /^    (Stream)?Call<[A-Za-z]+> [a-zA-Z]+\(/ && !documented { signature = ""; pending = 1 }
pending {
    signature = signature $0 "\n"
    if (match($0, /KelvarisSDK_[A-Z][A-Za-z]+[>(,]/)) {
        callee = substr($0, RSTART, RLENGTH - 1)
        printf "    /** @copybrief %s\n     *\n     * See %s(). */\n%s", callee, callee, signature
        pending = 0
    } else if (/^    }$/) {
        printf "%s", signature
        pending = 0
    }
    next
}

# A callback's type has no comment of its own.
/^typedef bool \(\*KelvarisSDK_/ {
    record = $0
    sub(/^[^)]*\)\(/, "", record)
    sub(/ .*/, "", record)
    print "/** Gets a " record "; the conventions tell when and on which thread. */ " $0
    next
}

{
    # A note behind a field.
    if (match($0, /(;|,|= [0-9]+) +\/\* /)) {
        $0 = substr($0, 1, RSTART + RLENGTH - 4) "/**< " substr($0, RSTART + RLENGTH)
    }
    documented = /\*\/$/
    print linked($0)
}

END {
    if (!cpp) print "/** @} */"
}

# csdkinterface.h has the handle, kelvarissdk.hpp the client; what calls are made of in C++ is together.
function groupOf(name) {
    if (!cpp) return name ~ /^(csdkinterface|version)$/ ? "c_core" : "c_" name
    if (name ~ /^(kelvarissdk|call|await|delivery|result)$/) return "cpp_client"
    return name == "fields" ? "cpp_types" : "cpp_" name
}

# What leads to the conventions in a header leads to the page that these have become, and names in comments lead to what
# they name.
function linked(line,    place, words, shown, name, next_) {
    sub(/The conventions above/, "The @ref conventions_cpp", line)
    if (match(line, /see [0-9]+ in (csdkinterface\.h|kelvarissdk\.hpp)/)) {
        split(substr(line, RSTART, RLENGTH), words, " ")
        place = words[4] == "csdkinterface.h" ? "conventions_c" : "conventions_cpp"
        line = substr(line, 1, RSTART - 1) "see " words[2] " in the @ref " place substr(line, RSTART + RLENGTH)
    }
    if (code) return line
    if (line !~ /^ *\*/) {
        place = index(line, "/**")
        if (!place) return line
        shown = substr(line, 1, place)
        line = substr(line, place + 1)
    }
    while (match(line, /KelvarisSDK_[A-Za-z_]*[A-Za-z]/)) {
        name = substr(line, RSTART, RLENGTH)
        next_ = substr(line, RSTART + RLENGTH, 1)
        shown = shown substr(line, 1, RSTART - 1) (next_ ~ /[_(*]/ ? name : "@ref " name " \"" name "\"")
        line = substr(line, RSTART + RLENGTH)
    }
    return shown line
}
