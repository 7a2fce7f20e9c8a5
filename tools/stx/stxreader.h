#pragma once

// Reader of syntax tree files (.stx): opens a file, validates it completely, gives typed access to
// every record, resolves strings and links, follows references into the files of other modules.
// Self-contained: this header and its sources may be copied into a back end as they are.
//
// Everything that a Tree hands out comes from a validated file: links lead to records that exist,
// lists end, strings are terminated. Numbers of records and strings run from 1; 0 means none.

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "stxcodes.h"

namespace stx {

// ---- records ------------------------------------------------------------------------------------

struct TimeStamp {
    uint16_t version = 0; // times 100
    uint16_t version2 = 0;
    int32_t date = 0; // YYYYMMDD
    int32_t time = 0; // HHMMSS
    friend bool operator==(const TimeStamp&, const TimeStamp&) = default;
};

struct MNode { // a module: record 1 the module itself, the others those that it refers to
    TimeStamp modTimeStamp;
    uint32_t modName = 0, stxName = 0;
    uint32_t firstTypeAss = 0, firstValAss = 0, firstDefVal = 0, modOid = 0;
    uint32_t recCount[10] = {};
    uint8_t exportsState = 0, importsState = 0, automaticTags = 0, selection = 0;
    uint32_t srcDir = 0, srcFile = 0;
    uint32_t modWords[6] = {};
    /// STANDARD-VERSION=: 0 for 1994, 1 for 1990, 2 for 2021.
    uint32_t standard() const { return modWords[3] >> 8 & 0xFF; }
};
struct TNode { // a type, component, field, formal parameter or the head of a type assignment
    int32_t name = 0;
    uint32_t actParRec = 0, line = 0;
    int32_t compStatus = 0; // take the absolute value: role() does
    uint32_t defaultVal = 0, next = 0;
    int32_t constraint = 0;
    uint32_t tags = 0, optFlags = 0, nodeFlags = 0, tedFirst = 0, tedLast = 0;
    int16_t checkState = 0;
    uint8_t typeCode = TYP_NONE, vfKind = 0, sizeOpt = 0;
    uint8_t boundForms = 0; // BOUND_* of either bound: lowerForm() and upperForm()
    uint16_t checkFlags = 0;
    uint8_t entryFlags = 0, entryKinds = 0, lenForm = 255, skipOpt = 255;
    uint32_t sizeLimit = 0;
    uint8_t sizeLimitSkip = 0;
    int16_t fieldSize = 0;
    int32_t refMod = 0;
    uint32_t ref = 0, namedVals = 0, syntaxList = 0, formals = 0;
    int32_t syntax = 0;
    int64_t lowerBound = 0, upperBound = 0;
    uint8_t lowerForm() const { return boundForms & 3; }
    uint8_t upperForm() const { return boundForms >> 2 & 3; }
    /// TCS_* whatever its sign.
    int64_t role() const { return compStatus < 0 ? -int64_t{compStatus} : compStatus; }
    /// A parameterized definition: it is not solved, only its instances are (their heads have the
    /// parameters too, and the role negated).
    bool isParameterized() const { return formals != 0 && compStatus >= 0; }
};
/// A value, named number, component value, DEFAULT value or head of a value assignment.
struct VNode {
    int32_t name = 0, valStatus = 0;
    uint8_t vflags = 0;
    uint32_t actParRec = 0, line = 0, govType = 0, govTypeMod = 0, next = 0;
    uint16_t checkState = 0;
    uint8_t valCode = TYP_NONE;
    int32_t refMod = 0;
    uint32_t ref = 0, tedFirst = 0, tedLast = 0;
    // the value proper; valCode tells which of these counts
    bool boole = false;
    int64_t number = 0; // INTEGER, ENUMERATED, arcs; of a REAL the mantissa
    uint32_t exact = 0; // string of the digits, when `number` is only the nearest one of 64 bits
    int16_t base = 0, exponent = 0;
    uint16_t striLen = 0;
    uint32_t stri = 0;
    uint32_t formals = 0;
    int32_t deferred = 0;
};
struct TagRec {
    int32_t tagClass = 0, tagMode = 0, tagNr = 0;
    uint32_t next = 0;
};
struct SubRec {
    uint32_t name = 0;
    uint8_t subKind = 0, subFlags = 0;
    uint32_t typeMod = 0, typeNr = 0, line = 0, next = 0, third = 0, left = 0;
    int32_t right = 0;
};
struct TedRec {
    uint8_t tedKind = 0;
    uint32_t text = 0;
};
struct SNode {
    uint8_t token = 0;
    uint32_t module = 0;
    int32_t value = 0;
    uint32_t line = 0;
    int32_t next = 0;
};

// ---- field tables -------------------------------------------------------------------------------

/// How the bytes of a field are read.
enum class Form : uint8_t { Unsigned, Signed, Wide, Words, Stamp, Value, Unused };
/// What the number in a field means.
enum class Sense : uint8_t {
    Plain,
    Code,   // one of `names`, nothing else
    Names,  // a code that may also be one without a name
    Bits,   // flags; `names` by the value of the bit
    String, // number of an 8-bit string, the sign aside
    Link,
};
/// What a link leads to; `linkOf` settles those of the second group by other fields of the record.
enum class Leads : uint8_t {
    Nowhere,
    Module, // an mNode, when positive
    Type,   // a tNode of this file; likewise the next ones
    Value,
    Tag,
    Constraint, // negative: text that was not parsed
    Syntax,     // the sign aside
    Text,       // a string

    ListedType, // of the module that the mNode stands for
    ListedValue,
    FirstOption,
    LastOption,
    TypeRef,
    Actuals,
    Governor,
    ValueRef,
    ValueText,
    ValueActuals,
    TagNumber, // negative: the value that gives it
    Constrained,
    LeftOperand,
    RightOperand,
    SyntaxValue,
};

struct Field {
    const char* name;
    uint16_t offset, width;
    Form form;
    Sense sense;
    Leads leads;
    const std::span<const CodeName>* codes; // null: none
    /// Names of codes, or of bits (code = the bit's value).
    std::span<const CodeName> names() const {
        return codes == nullptr ? std::span<const CodeName>() : *codes;
    }
};
/// The fields of a record kind in the order of their offsets, without gap; empty for strings.
std::span<const Field> fieldsOf(Kind kind);
/// The field of that name; its `name` is null when there is none.
Field fieldNamed(Kind kind, std::string_view name);

enum class Target : uint8_t {
    None,     // no link: the number is 0, or not a link in this record
    Record,   // record `nr` of `kind` in module reference `module`
    String,   // string `nr` of `kind` (STRI8, STRI16, STRI32) of this file
    Formal,   // the formal parameter at position `nr`
    Deferred, // text that is not parsed; nothing of it is in the file
};
struct Link {
    Target target = Target::None;
    Kind kind = TNODE;
    uint32_t module = 1; // 1 = this file; else an mNode of it
    uint32_t nr = 0;
    bool optional = false; // strings: a number above the count is legal and means none
};

// ---- one file -----------------------------------------------------------------------------------

class Tree {
  public:
    /// Read and validate the file. False: `error` says what is wrong, and the tree is empty.
    [[nodiscard]] bool open(const std::string& path, std::string& error);
    /// The same for bytes in memory; `name` stands in the error texts.
    [[nodiscard]] bool parse(const std::string& name, std::vector<uint8_t> bytes,
                             std::string& error);

    const std::string& path() const { return path_; }
    uint32_t count(Kind kind) const { return counts_[kind]; }

    /// A record by number; a number out of range gives a record of zeroes.
    MNode mNode(uint32_t nr) const;
    TNode tNode(uint32_t nr) const;
    VNode vNode(uint32_t nr) const;
    TagRec tagRec(uint32_t nr) const;
    SubRec subRec(uint32_t nr) const;
    TedRec tedRec(uint32_t nr) const;
    SNode sNode(uint32_t nr) const;

    /// The 8-bit string of a number, without its terminator; the sign does not count. Empty for 0
    /// and for a number that the file does not hold (hasText tells).
    std::string_view text(int64_t nr) const;
    bool hasText(int64_t nr) const;
    std::u16string text16(int64_t nr) const;
    std::u32string text32(int64_t nr) const;

    /// The module's own name.
    std::string_view moduleName() const { return text(mNode(1).modName); }

    /// The last checks have run over the module: every head of a type or value that is no
    /// parameterized definition is at checkState 3 (a module without any counts as checked). They
    /// run for no module when the run had an error anywhere; bounds, final tags and numbers of
    /// enumeration items are not filled in then.
    bool checked() const;

    /// The bytes of a record or of a string's characters with the terminator; empty when out of
    /// range.
    std::span<const uint8_t> bytes(Kind kind, uint32_t nr) const;
    /// An integer field of a record; false for the forms that are not one integer.
    [[nodiscard]] bool number(Kind kind, uint32_t nr, const Field& field, int64_t& value) const;
    /// What the field of the record leads to.
    Link linkOf(Kind kind, uint32_t nr, const Field& field) const;

  private:
    bool layOut(std::string& error);
    bool layOutStrings(Kind kind, uint64_t& at, std::string& error);
    bool checkRecords(std::string& error) const;
    bool checkRecord(Kind kind, uint32_t nr, std::string& error) const;
    bool checkLink(Kind kind, uint32_t nr, const Field& field, std::string& error) const;
    bool checkLists(std::string& error) const;
    bool checkOwners(std::string& error) const;
    bool owns(Kind kind, uint32_t nr) const;

    std::string path_;
    std::vector<uint8_t> bytes_;
    std::array<uint32_t, kindCount> counts_ = {};
    std::array<uint64_t, kindCount> start_ = {};    // first record of the kind
    std::array<std::vector<uint64_t>, 3> stringAt_; // length word of every string, and the end
};

/// Names of codes: the name, or "" for a code that the table does not know.
std::string_view codeName(std::span<const CodeName> names, int64_t code);
/// The names of the bits that are set, joined by blanks; unknown bits as one hexadecimal number.
std::string bitNames(std::span<const CodeName> names, int64_t bits);

// ---- lists of one file --------------------------------------------------------------------------

/// The records of a list from its first number on, along `next`. SNODE: one level, groups unopened.
std::vector<uint32_t> listFrom(const Tree& tree, Kind kind, int64_t first);
std::vector<uint32_t> typeAssignments(const Tree& tree);
std::vector<uint32_t> valueAssignments(const Tree& tree);
/// Entries of SEQUENCE, SET, CHOICE and CLASS as they stand, the element of SEQUENCE OF and SET OF,
/// extension markers included. Extension addition groups are entered unless `groups` is true.
std::vector<uint32_t> components(const Tree& tree, uint32_t typeNr, bool groups = false);
std::vector<uint32_t> tagList(const Tree& tree, uint32_t typeNr);
/// Named numbers, enumeration items or named bits.
std::vector<uint32_t> namedValues(const Tree& tree, uint32_t typeNr);
/// Component values, list elements, settings of an object, arcs.
std::vector<uint32_t> componentValues(const Tree& tree, uint32_t valueNr);
/// First constraint record of a type, 0 = none (or not parsed).
uint32_t constraintOf(const Tree& tree, uint32_t typeNr);
/// Operands of a constraint that are constraints themselves.
std::vector<uint32_t> operands(const Tree& tree, uint32_t subNr);
/// The value behind `!` of an extension marker (TNODE of a list, VNODE of an enumeration) or of a
/// constraint (SUB), 0 = none.
uint32_t exceptionOf(const Tree& tree, Kind kind, uint32_t nr);
/// A component reference of a table constraint: `@a.b` has no dots, `@..a` two.
struct Relation {
    /// Right behind "@": 1 = it starts at the innermost structure, each more one further out; 0 =
    /// at the outermost.
    uint32_t dots = 0;
    std::vector<uint32_t> steps; // sNodes, each a component or the number of an element
};
std::vector<Relation> relations(const Tree& tree, uint32_t subNr);
/// Option comments of a type (TNODE) or value (VNODE).
std::vector<uint32_t> options(const Tree& tree, Kind kind, uint32_t nr);
/// A definition or component by name, hyphens written as "-" or "_"; 0 = none.
uint32_t findType(const Tree& tree, std::string_view name);
uint32_t findValue(const Tree& tree, std::string_view name);
uint32_t findComponent(const Tree& tree, uint32_t typeNr, std::string_view name);

// ---- several files ------------------------------------------------------------------------------

struct TypeRef {
    const Tree* tree = nullptr;
    uint32_t nr = 0;
    explicit operator bool() const { return tree != nullptr && nr != 0; }
    friend bool operator==(const TypeRef&, const TypeRef&) = default;
    TNode node() const { return tree ? tree->tNode(nr) : TNode(); }
};
struct ValueRef {
    const Tree* tree = nullptr;
    uint32_t nr = 0;
    explicit operator bool() const { return tree != nullptr && nr != 0; }
    friend bool operator==(const ValueRef&, const ValueRef&) = default;
    VNode node() const { return tree ? tree->vNode(nr) : VNode(); }
};

/// What to do with a tree that is not checked.
enum class Unchecked : uint8_t { refuse, accept };

struct ConstraintMemo; // of stxconstraint.h
struct StructureMemo;  // of stxcomponents.h
struct ObjectMemo;     // of stxobjects.h

/// Stands for the path of the built-in module, which has no file.
inline constexpr const char* builtinModule = "(ISO8824)";

/// The files of a compilation, opened as references lead to them: each lies beside the file that
/// refers to it and must come from the same run. Trees stay where they are until the object ends.
class Trees {
  public:
    /// Open a file, once; null with `error` set when it cannot be used. What is told of unchecked
    /// trees holds for the files that references lead to as well: once accepted, they all are.
    const Tree* open(const std::string& path, std::string& error,
                     Unchecked unchecked = Unchecked::refuse);
    /// The error of the first file that was refused as not checked, "" = none was.
    const std::string& refused() const { return refused_; }
    /// The tree of a module reference of `from`; null with `error` set when there is none.
    const Tree* module(const Tree& from, int64_t refMod, std::string& error);

    /// How far to follow: not through class field types, through them too, to the next type with
    /// tags.
    enum class Skip : uint8_t { Plain, Fields, Untagged };
    TypeRef skip(TypeRef type, Skip how, std::string& error);
    /// The value at the end of a chain of references.
    ValueRef skip(ValueRef value, std::string& error);

    /// What is worked out once and kept is counted, in steps of about a record read: false when it
    /// was more than the files can need that are open. Trees of a compiler never come near.
    [[nodiscard]] bool spend(uint64_t steps);
    /// The same for what is not kept: step number `nr` of one call counts when there are fewer
    /// records, so that only what goes over the same ones again can come to an end.
    [[nodiscard]] bool spendBeyond(uint64_t nr) { return nr <= records_ || spend(1); }
    // kept by the units that work them out
    std::shared_ptr<ConstraintMemo> constraints;
    std::shared_ptr<StructureMemo> structures;
    std::shared_ptr<ObjectMemo> objects;

  private:
    struct Entry {
        std::unique_ptr<Tree> tree;
        std::string error;
        bool usable = false; // checked, or of the built-in module
    };
    /// What a module reference leads to.
    struct Reached {
        const Tree* tree = nullptr;
        std::string error;
    };
    Reached reach(const Tree& from, uint32_t refMod);
    struct Key {
        const Tree* tree;
        uint32_t nr;
        Skip how;
        friend auto operator<=>(const Key&, const Key&) = default;
    };
    struct End {
        TypeRef type;
        std::string error;
        bool running = false;
    };
    std::map<std::string, Entry> files_;
    std::map<std::pair<const Tree*, uint32_t>, Reached> reached_;
    bool acceptsUnchecked_ = false;
    std::string refused_;
    /// What may be spent on working everything out: this, and so much for each record.
    static constexpr uint64_t leastSteps = 4'000'000, stepsPerRecord = 64;
    uint64_t spent_ = 0, records_ = 0;
    struct ValueEnd {
        ValueRef value;
        std::string error;
        bool running = false;
    };
    std::map<Key, End> ends_; // where chains of references end
    std::map<std::pair<const Tree*, uint32_t>, ValueEnd> valueEnds_;
};

/// The type records of the built-in module ISO8824 as the bytes of a tree file. No such file is
/// ever written; Trees takes this one where a reference leads there. `later`: as it is in a run
/// with a module of STANDARD-VERSION=2021; the mNodes of that run tell it by their counts.
std::vector<uint8_t> builtinTree(bool later = false);

/// The record that a link leads to, in whichever file; null tree with `error` set when out of
/// reach.
TypeRef typeOf(Trees& trees, const Tree& from, const Link& link, std::string& error);
ValueRef valueOf(Trees& trees, const Tree& from, const Link& link, std::string& error);

/// One step from a type reference, a selection type or information from an object (with `fields`:
/// also from a class field type) to what it designates. No tree: nothing to follow, or `error` is
/// set.
TypeRef nextType(Trees& trees, TypeRef type, bool fields, std::string& error);
/// All steps: the type that defines the notation. On an error the last type reached.
TypeRef skipTypes(Trees& trees, TypeRef type, bool fields, std::string& error);
ValueRef skipValues(Trees& trees, ValueRef value, std::string& error);

/// A component where it takes part in its structure: COMPONENTS OF expanded, groups entered,
/// markers out.
struct Component {
    TypeRef type;
    int64_t automaticTag = -1; // number of the automatic tag; -1 = none
    bool extension = false;    // an addition: between the markers, or behind the only one
    TypeRef group;             // the `[[ ]]` that it stands in; its sizeLimit is the version number
};
/// The components in the order of the source (a second root list behind the additions); the limit
/// is that of the compiler, 32767. `error` when a file is missing.
std::vector<Component> allComponents(Trees& trees, TypeRef type, std::string& error);

struct Tag {
    int32_t tagClass = 0;
    int64_t number = 0;
    friend bool operator==(const Tag&, const Tag&) = default;
};
/// The tags that a value of the type carries in an encoding, outermost first: written and automatic
/// tags with IMPLICIT applied. `open`: behind them comes whatever the CHOICE, ANY or open type
/// holds.
struct FinalTags {
    std::vector<Tag> tags;
    bool open = false;
};
FinalTags finalTags(Trees& trees, TypeRef type, int64_t automaticTag, std::string& error);
/// Number of a tag record, resolved when a value gives it; -1 when it cannot be obtained.
int64_t tagNumber(Trees& trees, const Tree& tree, const TagRec& tag);

// ---- texts --------------------------------------------------------------------------------------

/// "[1]", "[APPLICATION 2]"
std::string tagText(const Tag& tag);
/// The tag records of a type as they stand: "[1] IMPLICIT [APPLICATION 2] EXPLICIT".
std::string tagListText(Trees& trees, TypeRef type);
/// "1..10", "MIN..MAX": bounds as pass 5 stored them; beyond what they hold
/// "<-9223372036854775808",
/// ">18446744073709551615".
std::string boundsText(const TNode& type);
std::string boundText(int64_t bound, uint8_t form);
/// An INTEGER, ENUMERATED or arc in decimal, whatever its size.
std::string integerText(const Tree& tree, const VNode& value);
/// A value and a constraint in ASN.1 notation, references by name, cut after some thousand
/// characters.
std::string valueText(Trees& trees, ValueRef value);
std::string constraintText(Trees& trees, const Tree& tree, uint32_t subNr);
/// What a type is called where it is used: the name of a reference, else its ASN.1 name.
std::string typeText(Trees& trees, TypeRef type);
/// "[[", or with its version number "[[ 2:"
std::string groupText(const TNode& group);
/// "...", with its exception "... !5": a marker of a list (TNODE) or of an enumeration (VNODE).
std::string markerText(Trees& trees, const Tree& tree, Kind kind, uint32_t nr);
/// ASN.1 name of a type code, "" for the codes without one.
std::string_view asnName(uint8_t typeCode);
/// Decodes the character of UTF-8 at `at` and moves on; false where the bytes are not UTF-8.
[[nodiscard]] bool decodeUtf8(std::string_view text, size_t& at, uint32_t& code);
/// The bytes as a text of printable ASCII in double quotes; others as \xhh.
std::string quoted(std::string_view text);

} // namespace stx
