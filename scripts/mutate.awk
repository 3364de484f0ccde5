# Lists one-line faults of C++ sources, in a random order that a seed settles, spread over the files:
#     awk -v seed=1 -f scripts/mutate.awk FILE...
# One fault a line, parts separated by the byte 31: file, line number, kind, the whole new line.
# A line is taken apart into tokens; comments, preprocessor lines, static_assert and trace calls are left alone.

BEGIN {
    swap("HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER", "wrong hive")
    split("TRUE FALSE true false", word, " ")
    swap(word[1], word[2], "constant")
    swap(word[3], word[4], "constant")
    pairs = "FILE_SHARE_READ FILE_SHARE_WRITE CREATE_ALWAYS OPEN_EXISTING GENERIC_READ GENERIC_WRITE " \
        "KEY_READ KEY_WRITE LOGPIXELSX LOGPIXELSY LOWORD HIWORD cx cy left right top bottom width height " \
        "first second front back min max floor ceil dmPaperWidth dmPaperLength Width Height"
    words = split(pairs, word, " ")
    for (i = 1; i < words; i += 2)
        swap(word[i], word[i + 1], "wrong name")
    words = split("== != < <= > >= && || + - * / += -= ++ -- |= &=", word, " ")
    for (i = 1; i < words; i += 2) {
        operator[word[i]] = word[i + 1]
        operator[word[i + 1]] = word[i]
    }
    random_state = seed * 7919 + 12345
    for (i = 0; i < 10; ++i)
        random(1)
}

function swap(one, other, kind) {
    name[one] = other
    name[other] = one
    name_kind[one] = name_kind[other] = kind
}

# A number from 1 to `most`; the same for a seed with every awk.
function random(most) {
    random_state = (random_state * 16807) % 2147483647
    return 1 + int(random_state / 2147483647 * most)
}

# --- tokens: text[], start[], class[] ("id", "number", "string", "op"), gap[] (a space before it) ---

function add_token(length_, class_) {
    text[++tokens] = substr($0, column, length_)
    start[tokens] = column
    class[tokens] = class_
    gap[tokens] = column == 1 || substr($0, column - 1, 1) == " "
    column += length_
}

function tokenize(   rest, end) {
    tokens = 0
    column = 1
    while (column <= length($0)) {
        rest = substr($0, column)
        if (in_comment || in_raw_string) {
            end = index(rest, in_comment ? "*/" : ")\"")
            if (!end)
                return
            column += end + 1
            in_comment = in_raw_string = 0
        } else if (rest ~ /^\/\//) {
            return
        } else if (rest ~ /^\/\*/) {
            in_comment = 1
            column += 2
        } else if (rest ~ /^R"\(/) {
            in_raw_string = 1
            column += 3
        } else if (match(rest, /^(L|u8|u|U)?"([^"\\]|\\.)*"/) || match(rest, /^(L|u8|u|U)?'([^'\\]|\\.)*'/)) {
            add_token(RLENGTH, "string")
        } else if (match(rest, /^[0-9][0-9A-Za-z'.]*/)) {
            add_token(RLENGTH, "number")
        } else if (match(rest, /^[A-Za-z_][A-Za-z_0-9]*/)) {
            add_token(RLENGTH, "id")
        } else if (rest ~ /^ /) {
            ++column
        } else if (match(rest, /^(<<=|>>=|<=>|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||\+=|-=|\*=|\/=|\|=|&=|\^=|%=)/)) {
            add_token(RLENGTH, "op")
        } else {
            add_token(1, "op")
        }
    }
}

function end_of(token) {
    return start[token] + length(text[token])
}

# Whether a token stands between two spaces: an operator of two values, no part of a type.
function is_apart(token) {
    return gap[token] && substr($0, end_of(token), 1) == " "
}

# The bracket that closes the one at `token`, 0 when it is on another line.
function closing(token,   depth, i) {
    for (i = token; i <= tokens; ++i) {
        if (text[i] ~ /^[([{]$/)
            ++depth
        else if (text[i] ~ /^[])}]$/ && --depth == 0)
            return i
    }
    return 0
}

# Whether two words follow each other between two tokens, as in a declaration.
function is_declaration(from, to,   i) {
    for (i = from; i < to; ++i)
        if (class[i + 1] == "id" && (class[i] == "id" || text[i] ~ /^[*&>]$/ && !gap[i]))
            return 1
    return 0
}

# --- faults ---

function add_fault(kind, new) {
    if (new == $0)
        return
    faults[FILENAME, kind] = ++count
    if (!((FILENAME, kind) in amount)) {
        if (!(FILENAME in kinds))
            file[++files] = FILENAME
        kind_of[FILENAME, ++kinds[FILENAME]] = kind
    }
    fault[FILENAME, kind, ++amount[FILENAME, kind]] = FILENAME "\037" FNR "\037" kind "\037" new
}

# The line with the characters from column `from` up to `to` exclusive replaced.
function replaced(from, to, new) {
    return substr($0, 1, from - 1) new substr($0, to)
}

function fault_of_number(i,   digits, last) {
    if (text[i] ~ /^0[xX]/) {
        match(text[i], /^0[xX][0-9A-Fa-f]+/)
        last = tolower(substr(text[i], RLENGTH, 1))
        digits = substr(text[i], 1, RLENGTH - 1) substr("123456789abcde0", index("0123456789abcdef", last), 1)
        if (last == "e" || last == "f")
            digits = substr(text[i], 1, RLENGTH - 1) (last == "e" ? "f" : "e")
    } else {
        match(text[i], /^[0-9]+/)
        digits = substr(text[i], 1, RLENGTH)
        digits = digits + (digits == 0 || (FNR + i) % 2 ? 1 : -1)
    }
    add_fault("constant", replaced(start[i], end_of(i), digits substr(text[i], RLENGTH + 1)))
}

function fault_of_word(i) {
    if (text[i] in name && (text[i] ~ /^[A-Z]/ || text[i - 1] ~ /^(\.|->|::)$/ || text[i] ~ /^(true|false)$/))
        add_fault(name_kind[text[i]], replaced(start[i], end_of(i), name[text[i]]))
    else if (text[i] ~ /^[xy]$/ && text[i - 1] ~ /^(\.|->)$/)
        add_fault("wrong name", replaced(start[i], end_of(i), text[i] == "x" ? "y" : "x"))
    else if (text[i] ~ /^[A-Z][A-Z0-9]*_[A-Z0-9_]+$/ && text[i] !~ /_PTR$|_INFO|^HKEY_|^TRACE/ && text[i + 1] !~ /^[({:]/ &&
             class[i + 1] != "id" && (text[i + 1] !~ /^[*&]$/ || is_apart(i + 1)))
        add_fault(text[i] ~ /^ID[A-Z]_/ ? "wrong id" : "constant", replaced(start[i], end_of(i), "(" text[i] " + 1)"))
    if (text[i - 1] == "|" && is_apart(i - 1) && class[i - 2] == "id" && text[i + 1] ~ /^[,;)|]?$/)
        add_fault("dropped flag", replaced(end_of(i - 2), end_of(i), ""))
}

function fault_of_operator(i,   new) {
    if (text[i] in operator && (is_apart(i) || text[i] ~ /^(\+\+|--|==|!=|<=|>=)$/)) {
        new = operator[text[i]]
        add_fault(new ~ /^[=!<>]/ ? "comparison" : new ~ /^(&&|\|\|)$/ ? "negated condition" : "arithmetic",
                  replaced(start[i], end_of(i), new))
        if (text[i] ~ /^[<>]=?$/)
            add_fault("negated condition",
                      replaced(start[i], end_of(i), text[i] ~ /</ ? (text[i] ~ /=/ ? ">" : ">=") : text[i] ~ /=/ ? "<" : "<="))
    } else if (text[i] == "!" && text[i + 1] ~ /^[A-Za-z_(]/) {
        add_fault("negated condition", replaced(start[i], end_of(i), ""))
    }
}

function fault_of_condition(i,   end) {
    if (text[i] !~ /^(if|while)$/ || text[i + 1] != "(" || !(end = closing(i + 1)) || is_declaration(i + 2, end - 1))
        return
    add_fault("negated condition", replaced(end_of(i + 1), start[end], "!(" substr($0, end_of(i + 1), start[end] - end_of(i + 1)) ")"))
}

# What a condition chooses between, exchanged.
function fault_of_choice(i,   j, colon, depth) {
    if (text[i] != "?")
        return
    for (j = i + 1; j <= tokens; ++j) {
        if (text[j] == "?")
            return
        if (text[j] == ":" && depth == 0 && !colon)
            colon = j
        else if (depth == 0 && text[j] ~ /^[;,)}]$/)
            break
        depth += text[j] ~ /^[([{]$/ ? 1 : text[j] ~ /^[])}]$/ ? -1 : 0
    }
    if (colon && j <= tokens)
        add_fault("negated condition", replaced(start[i], end_of(j - 1), "? " substr($0, start[colon + 1], end_of(j - 1) - start[colon + 1]) \
            " : " substr($0, start[i + 1], end_of(colon - 1) - start[i + 1])))
}

# Two neighbours in a call or a braced list, exchanged.
function fault_of_arguments(i,   end, j, depth, begin, last_begin, last_end, more) {
    if (text[i] !~ /^[({]$/ || gap[i] && text[i] == "(" || text[i - 1] ~ /^(if|for|while|switch|catch|sizeof|decltype)$/)
        return
    if (!(end = closing(i)) || is_symmetric(i - 1))
        return
    begin = i + 1
    for (j = i + 1; j <= end; ++j) {
        if (j == end || text[j] == "," && depth == 0) {
            if (j > begin && more && !is_declaration(last_begin, j - 1) && are_alike(last_begin, begin))
                add_fault("swapped arguments", replaced(start[last_begin], end_of(j - 1), piece(begin, j - 1) ", " piece(last_begin, last_end)))
            last_begin = begin
            last_end = j - 1
            begin = j + 1
            more = 1
        }
        depth += text[j] ~ /^[([{]$/ || text[j] == "<" && !gap[j] ? 1 : text[j] ~ /^[])}]$/ || text[j] == ">" && !gap[j] ? -1 : 0
    }
}

# Whether a call's order makes no difference: that of the least or the greatest, of a type or not.
function is_symmetric(token) {
    if (text[token] == ">")
        token -= 3
    return text[token] ~ /^(min|max|is_permutation)$/
}

# Whether two arguments may be of one type: a text and a member's address are not.
function are_alike(one, other) {
    return (class[one] == "string") == (class[other] == "string") && (text[one] == "&") == (text[other] == "&") &&
        (text[one] == "{") == (text[other] == "{")
}

function piece(from, to) {
    return substr($0, start[from], end_of(to) - start[from])
}

# A whole statement, lock or row of a table that is gone.
function fault_of_line(   new, i, first, closed) {
    match($0, /^ */)
    new = substr($0, 1, RLENGTH) ";"
    if (text[tokens] == ";" && before ~ /^([;{}:)]|else|do|)$/) {
        if (tokens == 2 && text[1] ~ /^(break|continue|return)$/)
            add_fault("dropped statement", new)
        else if (is_statement())
            add_fault($0 ~ /(Release|Free|Close|Delete|Remove|Unmap|Destroy|Restore|reset|release|clear|unlock|erase|wipe)[A-Za-z_]*\(/ \
                      ? "missing release" : "dropped statement", new)
        else if ($0 ~ /(lock|Lock|Guard|Keeper|Scope|Context|Override|Once)[A-Za-z_<>:]* [a-z_]*[a-z](\(.*\)|\{.*\})?;/ && text[1] !~ /^(using|return|static|class|struct|friend)$/)
            add_fault("missing lock", new)
        return
    }
    first = text[1] ~ /^[({]$/ ? 1 : 2
    for (i = 1; i < first && text[i + 1] == "::"; i += 2)
        first = i + 3
    if (text[tokens] == "," && text[first] ~ /^[({]$/ && before ~ /^[{,(]$/) {
        closed = closing(first)
        if (closed == tokens - 1 && !is_declaration(1, first))
            add_fault("dropped row", "")
    }
}

# Whether the line is an assignment or a call whose value nobody takes.
function is_statement(   i, called) {
    i = 1
    if (text[1] == "(" && text[2] == "void" && text[3] == ")")
        i = 4
    else if (text[1] ~ /^(\*|\+\+|--)$/)
        i = 2
    if (class[i] != "id" && text[i] != "(" || text[i] ~ /^(return|using|typedef|friend|throw|delete|case|default|goto|static_assert)$/)
        return 0
    for (; i <= tokens; ++i) {
        if (text[i] ~ /^[([]$/) {
            called = text[i] == "("
            if (!(i = closing(i)))
                return 0
        } else if (text[i] ~ /^(=|\+=|-=|\|=|&=|\*=|\/=|<<=|>>=|\^=|\+\+|--)$/) {
            return text[i + 1] !~ /^(delete|default)$/
        } else if (text[i] == ";") {
            return called || text[1] ~ /^(\+\+|--)$/
        } else if (class[i] == "id" ? class[i - 1] == "id" || text[i - 1] ~ /^[*&>)]$/ && i > 2 : text[i] !~ /^(::|\.|->|\*)$/) {
            return 0
        } else if (class[i] == "id") {
            called = 0
        }
    }
    return 0
}

FNR == 1 {
    in_comment = in_raw_string = directive = skipping = 0
    before = ""
}

# A preprocessor line goes on behind a backslash.
directive || /^ *#/ {
    directive = /\\$/
    next
}

{
    tokenize()
    if (tokens == 0)
        next
    if (text[1] ~ /^(static_assert|TRACE|TRACE_F|TRACE_SCOPE|using|namespace|template|friend|asm|extern)$/)
        skipping = 1
    if (!skipping) {
        fault_of_line()
        for (i = 1; i <= tokens; ++i) {
            if (class[i] == "number")
                fault_of_number(i)
            else if (class[i] == "string" && text[i] ~ /"...*"$/)
                add_fault("wrong name", replaced(end_of(i) - 1, end_of(i), "_\""))
            else if (class[i] == "id")
                fault_of_word(i)
            else if (class[i] == "op")
                fault_of_operator(i)
            fault_of_condition(i)
            fault_of_choice(i)
            fault_of_arguments(i)
        }
        if (i = index($0, "qk::registry::CurrentUser().get()"))
            add_fault("wrong hive", replaced(i, i + 33, "HKEY_LOCAL_MACHINE"))
    }
    if (skipping && text[tokens] ~ /^[;{>]$/)
        skipping = 0
    before = text[tokens]
    for (i in text)
        delete text[i]
    for (i in class)
        delete class[i]
}

# Each round takes one fault of every file, of a kind and a line that had none if it can be.
END {
    for (i = files; i > 1; --i) {
        j = random(i)
        swapped = file[i]
        file[i] = file[j]
        file[j] = swapped
    }
    while (files > 0) {
        for (i = 1; i <= files; ++i)
            take_one(file[i])
        left = 0
        for (i = 1; i <= files; ++i)
            if (kinds[file[i]] > 0)
                file[++left] = file[i]
        files = left
    }
}

function take_one(from,   k, kind, chosen, parts, i) {
    while (kinds[from] > 0) {
        k = random(kinds[from])
        kind = kind_of[from, k]
        chosen = random(amount[from, kind])
        i = fault[from, kind, chosen]
        fault[from, kind, chosen] = fault[from, kind, amount[from, kind]]
        if (--amount[from, kind] == 0)
            kind_of[from, k] = kind_of[from, kinds[from]--]
        split(i, parts, "\037")
        if ((from, parts[2]) in used)
            continue
        used[from, parts[2]] = 1
        print i
        return
    }
}
