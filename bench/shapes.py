"""The modules that the benchmark compiles: each shape is a function of the number of definitions that
returns the files of a run, name and text. The texts depend on the number alone."""

# The format limits a list to 32,767 entries: longer ones are made of several types.
LONGEST_LIST = 30000


def module(lines, name="M", imports="", tags="AUTOMATIC TAGS"):
    return f"{name} DEFINITIONS {tags} ::= BEGIN\n{imports}" + "\n".join(lines) + "\nEND\n"


def single(lines, **kwargs):
    return {"m.asn": module(lines, **kwargs)}


def parts(n):
    """The lengths of the lists that n entries need."""
    return [min(LONGEST_LIST, n - at) for at in range(0, n, LONGEST_LIST)]


def mixed(n):
    """Definitions of every sort, as protocol modules hold them; eight lines make one round."""
    lines = ["ERR ::= CLASS { &code INTEGER UNIQUE, &Type OPTIONAL } WITH SYNTAX { [ARGUMENT &Type] CODE &code }"]
    for i in range(n // 8):
        before = i - 1 if i else 0
        lines += [
            f"Session-Parameters-{i} ::= SEQUENCE {{ identifier INTEGER (0..{i + 7}), enabled BOOLEAN DEFAULT TRUE,\n"
            f"  -- what the peer may do --\n  capabilities Capabilities-{i} OPTIONAL,\n"
            f"  previous Session-Parameters-{before}-Ref OPTIONAL, ... }}",
            f"Session-Parameters-{i}-Ref ::= SEQUENCE {{ name IA5String (SIZE (1..64)), kind Kind-{i} }}",
            f"Capabilities-{i} ::= BIT STRING {{ read(0), write(1), execute(2) }} (SIZE (3..16))",
            f"Kind-{i} ::= ENUMERATED {{ first, second, third-{i}, ..., fourth }}",
            f"Choice-Of-Kinds-{i} ::= CHOICE {{ kind Kind-{i}, parameters Session-Parameters-{i},\n"
            f"  list SEQUENCE (SIZE (0..max-entries-{i})) OF Session-Parameters-{i}-Ref, nothing NULL }}",
            f"max-entries-{i} INTEGER ::= {i + 1}",
            f"default-reference-{i} Session-Parameters-{i}-Ref ::= {{ name \"default {i}\", kind second }}",
            f"error-{i} ERR ::= {{ ARGUMENT Kind-{i} CODE {i} }}",
        ]
    return single(lines)


def small_types(n):
    return single([f"T{i} ::= INTEGER (0..{i})" for i in range(n)])


def huge_list(word):
    def shape(n):
        return single([f"T{at} ::= {word} {{ " + ", ".join(f"c{i} INTEGER (0..{i})" for i in range(count)) + " }"
                       for at, count in enumerate(parts(n))])
    return shape


def enumeration(n):
    return single([f"E{at} ::= ENUMERATED {{ " + ", ".join(f"e{i}" for i in range(count)) + " }"
                   for at, count in enumerate(parts(n))])


def named_numbers(n):
    return single([f"N{at} ::= INTEGER {{ " + ", ".join(f"e{i}({i})" for i in range(count)) + " }"
                   for at, count in enumerate(parts(n))])


def values(n):
    lines = ["S ::= SEQUENCE { a INTEGER, b BOOLEAN, c IA5String }"]
    for i in range(n // 4):
        lines += [f"i{i} INTEGER ::= {i}", f"s{i} S ::= {{ a i{i}, b TRUE, c \"text {i}\" }}",
                  f"o{i} OBJECT IDENTIFIER ::= {{ iso member-body 276 {i} }}", f"h{i} OCTET STRING ::= '{i:08X}'H"]
    return single(lines)


def synonyms(n):
    return single([f"T{i} ::= T{i + 1}" for i in range(n)] + [f"T{n} ::= BOOLEAN"])


def components_of(n):
    """Chains of 50 types, each including the next."""
    length = 50
    return single([f"T{i} ::= SEQUENCE {{ a{i} [{i % length}] NULL" +
                   (f", COMPONENTS OF T{i + 1}" if (i + 1) % length and i + 1 < n else "") + " }" for i in range(n)],
                  tags="IMPLICIT TAGS")


def imports(n):
    """Ten modules in a row, each handing the types of the one before it on."""
    count = n // 10
    files = {}
    for at in range(10):
        clause = "" if at == 0 else (
            "IMPORTS " + ", ".join(f"T{at - 1}-{i}" for i in range(count)) + f" FROM M{at - 1};\n")
        lines = [f"T{at}-{i} ::= " + ("INTEGER" if at == 0 else f"T{at - 1}-{i}") for i in range(count)]
        files[f"m{at}.asn"] = module(lines, name=f"M{at}", imports=clause)
    return dict(reversed(files.items()))


def objects(n):
    lines = ["C ::= CLASS { &id INTEGER UNIQUE, &Type } WITH SYNTAX { ID &id TYPE &Type }"]
    lines += [f"o{i} C ::= {{ ID {i} TYPE INTEGER (0..{i}) }}" for i in range(n)]
    lines += [f"S{at} C ::= {{ " + " | ".join(f"o{i}" for i in range(at * 1000, min(n, at * 1000 + 1000))) + " }"
              for at in range((n + 999) // 1000)]
    lines += [f"X{at} ::= SEQUENCE {{ i C.&id ({{S{at}}}), t C.&Type ({{S{at}}}{{@i}}) }}"
              for at in range((n + 999) // 1000)]
    return single(lines)


def instances(n):
    return single(["P{INTEGER:m, X} ::= SEQUENCE { a INTEGER (0..m), b X }"] +
                  [f"T{i} ::= P{{{i}, NULL}}" for i in range(n)])


def with_components(n):
    return single(["B ::= SEQUENCE { a INTEGER OPTIONAL, b BOOLEAN OPTIONAL, c NULL OPTIONAL }"] +
                  [f"T{i} ::= B (WITH COMPONENTS {{ ..., a (0..{i}) PRESENT, b ABSENT }})" for i in range(n)])


def with_syntax(n):
    words = " ".join(f"[WORD-{letter} &f{letter}]" for letter in "ABCDEFGHIJKLMNOPQRST")
    fields = ", ".join(f"&f{letter} INTEGER OPTIONAL" for letter in "ABCDEFGHIJKLMNOPQRST")
    used = " ".join(f"WORD-{letter} 1" for letter in "ABCDEFGHIJKLMNOPQRST")
    return single([f"C ::= CLASS {{ {fields} }} WITH SYNTAX {{ {words} }}"] +
                  [f"o{i} C ::= {{ {used} }}" for i in range(n // 4)])


def nesting(n):
    depth = 50
    return single([f"T{i} ::= " + "".join(f"SEQUENCE {{ c{k} " for k in range(depth)) + "NULL" + " }" * depth
                   for i in range(n // depth)])


def circle(n):
    """Modules of 64 definitions, each importing from the next; the files are named by a prefix option file. Every
    tree holds all options of its run, so that bytes written grow with the square of the number of modules."""
    count = n // 64
    files = {"prefix.opt": "-PREFIXLEN=32\n" + "".join(f"-PREFIX=Module-{i}:m{i}\n" for i in range(count))}
    for i in range(count):
        following = (i + 1) % count
        files[f"m{i}.asn"] = module(
            [f"A{i} ::= SEQUENCE {{ a A{following} OPTIONAL, b B{i} }}", f"B{i} ::= INTEGER (0..{i})"] +
            [f"C{i}-{k} ::= SEQUENCE (SIZE (0..{k})) OF B{i}" for k in range(62)],
            name=f"Module-{i}", imports=f"IMPORTS A{following} FROM Module-{following};\n")
    return files


SHAPES = {
    "mixed": mixed,
    "small types": small_types,
    "huge SEQUENCE": huge_list("SEQUENCE"),
    "huge CHOICE": huge_list("CHOICE"),
    "ENUMERATED": enumeration,
    "named numbers": named_numbers,
    "values": values,
    "synonyms": synonyms,
    "COMPONENTS OF": components_of,
    "imports": imports,
    "objects": objects,
    "instances": instances,
    "WITH COMPONENTS": with_components,
    "WITH SYNTAX": with_syntax,
    "nesting": nesting,
    "circle": circle,
}
