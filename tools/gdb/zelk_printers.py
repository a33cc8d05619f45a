"""Shows metadata trees, messages, lists and reflected fields in gdb.

gdb loads this file by itself together with libZelkCore; elsewhere it is loaded with "source". A tree looks like

    (gdb) set print pretty on
    (gdb) print tree
    $1 = {
      ["body"] = {
        ["id"] = -9,
        ["statelist"] = {...}
      },
      ["header"] = "from door"
    }

and "zelk-tree tree" prints it, or the tree inside a message, as indented JSON whatever the settings are.

Nothing is called in the program, so core dumps can be looked at. Trees need no debug information of the library: the
program's own tells their types but for the stores, whose layout stands in Layout. Compilers describe message classes
in the library alone, unless the program was compiled with -femit-class-debug-always (g++) or -fstandalone-debug
(clang++).
"""

import json

import gdb
import gdb.printing

POINTER = 8


class Layout:
    """Where things are in the stores of framework/containers.h, in bytes."""

    MEMBERS_HEADER = 2 * POINTER  # of an object's store: head
    MEMBERS_COUNT = MEMBERS_HEADER + 4 * POINTER
    MEMBERS_NODE = 4 * POINTER  # of the tree's own before the member in a node
    MISSING = POINTER + 1  # of an array's store: a byte
    CHUNKS = POINTER + 4  # four bytes
    PLACES = 2 * POINTER
    NEXT = 3 * POINTER
    CHUNK = 512  # bytes of a chunk at most


def word(address):
    """The pointer-sized number at the address."""
    return int(gdb.Value(address).cast(gdb.lookup_type("unsigned long").pointer()).dereference())


def at(address, kind):
    return gdb.Value(address).cast(kind.pointer()).dereference()


def element_type():
    return gdb.lookup_type("Zelk::MetaData::Element")


def string_type():
    return at(0, element_type())["string_"].type


def object_members(value):
    """Name and node of each member, in the order of the tree."""
    store = int(value["store_"])
    if store == 0:
        return
    strings, elements = string_type(), element_type()
    header = store + Layout.MEMBERS_HEADER
    parent, left, right = 1, 2, 3  # words of a tree node
    node = word(header + left * POINTER)
    for _ in range(word(store + Layout.MEMBERS_COUNT)):
        member = node + Layout.MEMBERS_NODE
        yield at(member, strings), at(member + strings.sizeof, elements)
        below = word(node + right * POINTER)
        if below != 0:
            while below != 0:
                node, below = below, word(below + left * POINTER)
        else:
            above = word(node + parent * POINTER)
            while node == word(above + right * POINTER) and above != header:
                node, above = above, word(above + parent * POINTER)
            node = above


def array_items(value):
    """Each node of an array."""
    store = int(value["store_"])
    if store == 0:
        return
    elements = element_type()
    chunk = Layout.CHUNK // elements.sizeof * elements.sizeof
    missing = int(at(store + Layout.MISSING, gdb.lookup_type("unsigned char")))
    chunks = int(at(store + Layout.CHUNKS, gdb.lookup_type("unsigned int")))
    places = word(store + Layout.PLACES)
    for i in range(chunks):
        begin = word(places + i * POINTER)
        end = word(store + Layout.NEXT) if i == chunks - 1 else begin + chunk
        for current in range(begin + (missing * elements.sizeof if i == 0 else 0), end, elements.sizeof):
            yield at(current, elements)


def kind_of(node):
    return int(node["kind_"])


REAL, INTEGER, BOOLEAN, STRING, OBJECT, ARRAY = range(6)


def scalar(node):
    """The value of a node that is neither object nor array, or None when it is empty."""
    kind = kind_of(node)
    if kind == REAL:
        return float(node["real_"])
    if kind == INTEGER:
        return int(node["integer_"])
    if kind == BOOLEAN:
        return int(node["integer_"]) != 0
    return None


def text_of(string):
    """The content of a std::string."""
    length = int(string["_M_string_length"])
    data = gdb.selected_inferior().read_memory(int(string["_M_dataplus"]["_M_p"]), length) if length else b""
    return bytes(data).decode("utf-8", "backslashreplace")


def indented(node):
    """The lines of a tree as JSON; no recursion, for trees may be deep."""
    line, open_nodes = "", [(iter([("", node)]), "", False)]
    while open_nodes:
        children, bracket, several = open_nodes[-1]
        child = next(children, None)
        if child is None:
            open_nodes.pop()
            if bracket:
                if several:
                    yield line
                    line = "  " * (len(open_nodes) - 1)
                line += bracket
            continue
        if bracket:
            yield line + ("," if several else "")
            line = "  " * (len(open_nodes) - 1)
            open_nodes[-1] = children, bracket, True
        name, node = child
        line += name
        kind = kind_of(node)
        if kind == OBJECT:
            line += "{"
            named = ((json.dumps(text_of(name), ensure_ascii=False) + ": ", member)
                     for name, member in object_members(node["object_"]))
            open_nodes.append((named, "}", False))
        elif kind == ARRAY:
            line += "["
            open_nodes.append((iter([("", item) for item in array_items(node["array_"])]), "]", False))
        elif kind == STRING:
            line += json.dumps(text_of(node["string_"]), ensure_ascii=False)
        else:
            line += json.dumps(scalar(node))
    yield line


class Members:
    """An object: names and nodes."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return None if int(self.value["store_"]) != 0 else "{}"

    def children(self):
        for index, (name, node) in enumerate(object_members(self.value)):
            yield f"name {index}", name
            yield f"node {index}", node

    def display_hint(self):
        return "map"


class Items:
    """An array: nodes."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return None if int(self.value["store_"]) != 0 else "[]"

    def children(self):
        return ((f"[{index}]", node) for index, node in enumerate(array_items(self.value)))

    def display_hint(self):
        return "array"


class Scalar:
    """A node that is neither object nor array."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return self.value["string_"] if kind_of(self.value) == STRING else json.dumps(scalar(self.value))


def node_printer(value):
    kind = kind_of(value)
    if kind == OBJECT:
        return Members(value["object_"])
    if kind == ARRAY:
        return Items(value["array_"])
    return Scalar(value)


class List:
    """A Json::Array: its items."""

    def __init__(self, value):
        self.begin = value["items_"]["_M_impl"]["_M_start"]
        self.size = int(value["items_"]["_M_impl"]["_M_finish"] - self.begin)

    def to_string(self):
        return f"list of {self.size}"

    def children(self):
        return ((f"[{index}]", (self.begin + index).dereference()) for index in range(self.size))

    def display_hint(self):
        return "array"


# Classes with nothing of their own to show.
SILENT = {
    "Zelk::Json::Serializable",
    "Zelk::MetaData::MirroredObject",
    "Zelk::MetaData::PartiallySerializableInterface",
    "Zelk::MetaData::ReflectorBase",
}


def class_name(kind):
    return (kind.strip_typedefs().unqualified().name or "").removesuffix(" const")


def own_members(value):
    """The data members of a class and of its bases, those of the bases first."""
    for field in value.type.strip_typedefs().fields():
        if field.is_base_class:
            if class_name(field.type) not in SILENT:
                yield from own_members(value[field])
        elif not field.artificial and not hasattr(field, "enumval") and hasattr(field, "bitpos"):
            yield field.name, value[field]


class Record:
    """A message or a record: its members, those of the bases first."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return None

    def children(self):
        return own_members(self.value)


class Field:
    """A reflected field: key, whether it is required and set, and the value."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return None

    def children(self):
        yield "key", self.value["name_"]
        yield "required", self.value["required_"]
        yield "set", self.value["set_"]
        yield from own_members(self.value)


def bases(kind):
    """The names of the class and of all its bases."""
    yield class_name(kind)
    for field in kind.strip_typedefs().fields():
        if field.is_base_class:
            yield from bases(field.type)


def printer_for(value):
    kind = value.type.strip_typedefs()
    if kind.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
        value = value.referenced_value()
        kind = value.type.strip_typedefs()
    name = class_name(kind)
    if kind.code != gdb.TYPE_CODE_STRUCT or not name.startswith("Zelk::") and not kind.fields():
        return None
    if name == "Zelk::MetaData::Element":
        return node_printer(value)
    if name == "Zelk::MetaData::Object":
        return Members(value)
    if name == "Zelk::MetaData::Array":
        return Items(value)
    if name.startswith("Zelk::Json::Array<"):
        return List(value)
    family = set(bases(kind))
    if "Zelk::MetaData::ReflectorBase" in family:
        return Field(value)
    if family & {"Zelk::Json::Serializable", "Zelk::MetaData::MirroredObject"}:
        return Record(value)
    return None


class Collection(gdb.printing.PrettyPrinter):
    def __call__(self, value):
        return printer_for(value)


class TreeCommand(gdb.Command):
    """Print a metadata tree, or the tree inside a message, as indented JSON: zelk-tree EXPRESSION"""

    def __init__(self):
        super().__init__("zelk-tree", gdb.COMMAND_DATA, gdb.COMPLETE_EXPRESSION)

    def invoke(self, argument, from_tty):
        value = gdb.parse_and_eval(argument)
        if value.type.strip_typedefs().code == gdb.TYPE_CODE_PTR:
            value = value.dereference()
        if value.type.strip_typedefs().code == gdb.TYPE_CODE_REF:
            value = value.referenced_value()
        if class_name(value.type) != "Zelk::MetaData::Element":
            value = value["internal_"]
        for line in indented(value):
            print(line)


gdb.printing.register_pretty_printer(gdb.current_objfile(), Collection("zelk"), replace=True)
TreeCommand()
