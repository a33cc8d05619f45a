#!/usr/bin/env python3
"""Checks the order of the virtual functions in the tables of the built libraries.

    virtual_slots_test.py LIBRARY...

Programs that were built before call by position, so a position never changes. The tables are read as the dynamic
linker fills them: each entry is a relocation. The libraries must not be stripped.
"""

import sys

from shared_object import lines_of, readable

TEXT = [
    "toJson(std::ostream&) const",
    "toJsonString() const",
    "moveToJson(std::ostream&)",
    "moveToJsonString()",
    "fromJson(std::istream&)",
    "fromJsonString(std::string const&)",
]
COPY = [
    "copyToMetaData(Zelk::MetaData::Element&) const",
    "copyFromMetaData(Zelk::MetaData::Element const&)",
]
MOVE = [
    "moveToMetaData(Zelk::MetaData::Element&)",
    "moveFromMetaData(Zelk::MetaData::Element&&)",
]
INTERNAL = [
    "copyToInternalMetaData() const",
    "moveToInternalMetaData()",
    "copyFromInternalMetaData()",
]
EVENT_ID = ["eventId() const", "setEventId(int)"]

SERIALIZABLE = ["destructor"] + TEXT + COPY + MOVE
STATE_MESSAGE = SERIALIZABLE + INTERNAL
COMMAND = STATE_MESSAGE + ["commandId() const"]
RESPONSE = STATE_MESSAGE + EVENT_ID
# A bound response has its response as a virtual base: its own table goes on behind that of the common root.
BOUND_BASE = SERIALIZABLE + EVENT_ID
BOUND_RESPONSE = BOUND_BASE + [INTERNAL[0], INTERNAL[2]]
REFLECTED = ["destructor"] + COPY


def field(value):
    return REFLECTED + [f"assign({value} const&)", "assign(Zelk::MetaData::Element const&)"]


LEGACY = "Zelk::Msgs::LegacyState::"
MSG_ID = "Zelk::Msgs::MsgIdState::"
INFO = MSG_ID + "InfoResponseData"
HELPER = f"Zelk::Msgs::PayloadMessageHelper<{MSG_ID}StateMessage, {INFO}, (unsigned short)4>"

EXPECTED = {
    "Zelk::Json::Serializable": SERIALIZABLE,
    "Zelk::Json::PartiallyDeserializable": STATE_MESSAGE,
    "Zelk::Json::Array<int>": SERIALIZABLE,
    f"Zelk::Json::Array<{LEGACY}RegisterCommand::Event>": SERIALIZABLE,
    f"Zelk::Json::Array<{LEGACY}MetaDataResponse::EventMetaData>": SERIALIZABLE,
    f"Zelk::Json::Array<{LEGACY}MetaDataResponse::EventMetaData::ParamMetaData>": SERIALIZABLE,
    f"Zelk::Json::Array<{LEGACY}StateSpaceMetaDataResponse::State>": SERIALIZABLE,
    f"Zelk::Json::Array<{LEGACY}XmlAttrToEventMappingResponse::Attr>": SERIALIZABLE,
    LEGACY + "RegisterCommand::Event": SERIALIZABLE,
    LEGACY + "MetaDataResponse::EventMetaData": SERIALIZABLE,
    LEGACY + "MetaDataResponse::EventMetaData::ParamMetaData": SERIALIZABLE,
    LEGACY + "StateSpaceMetaDataResponse::State": SERIALIZABLE,
    LEGACY + "XmlAttrToEventMappingResponse::Attr": SERIALIZABLE,
    LEGACY + "InfraMetaDataAppInfo": SERIALIZABLE,
    LEGACY + "StateMessage": STATE_MESSAGE,
    LEGACY + "StateCommand": COMMAND,
    LEGACY + "StateCommandWithEventId": COMMAND,
    LEGACY + "RegisterCommand": COMMAND,
    LEGACY + "UnregisterCommand": COMMAND,
    LEGACY + "CreateSubscriberCommand": COMMAND,
    LEGACY + "DeleteSubscriberCommand": COMMAND,
    LEGACY + "EnableLogModeCommand": COMMAND,
    **{f"{LEGACY}StateCommandWithGlobalEventId<{n}>": COMMAND for n in (-3, -4, -5, -6, -10)},
    **{f"{LEGACY}NormalGlobalEventCommand<{n}>": COMMAND for n in (-3, -4, -5, -6, -10)},
    LEGACY + "StateResponse": RESPONSE,
    **{f"{LEGACY}StateResponseWithEventId<{n}>": BOUND_BASE for n in (-1, -2, -7, -9)},
    LEGACY + "MetaDataResponse": BOUND_RESPONSE,
    LEGACY + "RegisterMessageQueueResponse": BOUND_RESPONSE,
    LEGACY + "XmlAttrToEventMappingResponse": BOUND_RESPONSE,
    LEGACY + "StateSpaceMetaDataResponse": BOUND_RESPONSE,
    "Zelk::MetaData::PartiallySerializableInterface": REFLECTED,
    "Zelk::MetaData::ReflectorBase": REFLECTED,
    "Zelk::MetaData::MirroredObject": REFLECTED,
    "Zelk::MetaData::ReflectorNoWriteParend<bool, true>": field("bool"),
    "Zelk::MetaData::ReflectorNoWriteParend<std::string, true>": field("std::string"),
    f"Zelk::MetaData::ReflectorNoWriteParend<{INFO}, true>": field(INFO),
    "Zelk::MetaData::Reflector<bool, false, true>": field("bool"),
    "Zelk::MetaData::Reflector<std::string, false, true>": field("std::string"),
    f"Zelk::MetaData::Reflector<{INFO}, true, true>": field(INFO),
    "Zelk::Msgs::ReflectedAddress": field("std::vector<std::string>"),
    "Zelk::Msgs::Message": REFLECTED,
    MSG_ID + "EngineMessage": REFLECTED,
    MSG_ID + "StateMessage": REFLECTED,
    HELPER: REFLECTED,
    f"Zelk::Msgs::SenderID_Required<{HELPER} >": REFLECTED,
    MSG_ID + "InfoRequestData": REFLECTED,
    MSG_ID + "InfoResponseData": REFLECTED,
    MSG_ID + "InfoResponse": REFLECTED,
}

# The abstract classes, and their functions without a body. Where there is none, a table cannot tell which function
# a slot is for; the tables of the classes that derive from it can. The slots of the destructor may be empty too,
# since no object of the class itself is ever destroyed.
PURE = {
    "Zelk::Json::Serializable": COPY,
    "Zelk::Json::PartiallyDeserializable": [INTERNAL[0], INTERNAL[2]],
    LEGACY + "StateMessage": [INTERNAL[0], INTERNAL[2]],
    LEGACY + "StateCommandWithEventId": [],
    **{f"{LEGACY}StateCommandWithGlobalEventId<{n}>": [] for n in (-3, -4, -5, -6, -10)},
    "Zelk::MetaData::PartiallySerializableInterface": COPY,
    "Zelk::MetaData::ReflectorBase": COPY,
}

# clang++ needs no table of this one, only those for the construction of what derives from it.
MAY_BE_MISSING = {LEGACY + "StateMessage"}

ADDRESS_SIZE = 8


def function_of(name):
    """The function and its parameters, without the class that defines it."""
    for thunk in ("virtual thunk to ", "non-virtual thunk to "):
        name = name.removeprefix(thunk)
    depth = 0
    start = 0
    for position, character in enumerate(name):
        if character == "<":
            depth += 1
        elif character == ">":
            depth -= 1
        elif depth == 0 and character == "(":
            break
        elif depth == 0 and name.startswith("::", position):
            start = position + 2
    function = name[start:]
    function = function.replace("std::basic_ostream<char, std::char_traits<char> >", "std::ostream")
    function = function.replace("std::basic_istream<char, std::char_traits<char> >", "std::istream")
    return "destructor" if function.startswith("~") else function


class Tables:
    """The tables of one library by the readable names of their classes."""

    def __init__(self, library):
        self.slots = {}  # address: mangled names, several for functions whose code was found equal and merged
        self.tables = {}
        names = {}
        for line in lines_of("readelf", "-sW", library):
            parts = line.split()
            if len(parts) < 8 or not parts[0][:-1].isdigit() or parts[6] == "UND":
                continue
            address, size, kind, name = int(parts[1], 16), int(parts[2], 0), parts[3], parts[7].split("@")[0]
            if kind in ("FUNC", "OBJECT"):
                names.setdefault(address, set()).add(name)
            if name.startswith("_ZTV"):
                self.tables[name] = (address, size)
        for line in lines_of("readelf", "-rW", library):
            parts = line.split()
            if len(parts) < 4 or not parts[2].startswith("R_"):
                continue
            offset = int(parts[0], 16)
            if parts[2].endswith("_RELATIVE"):
                self.slots[offset] = names.get(int(parts[-1], 16), set())
            elif len(parts) > 4:
                self.slots[offset] = {parts[4].split("@")[0]}
        self.by_class = {}
        for mangled, name in zip(self.tables, readable(self.tables)):
            self.by_class[name.removeprefix("vtable for ")] = mangled

    def order(self, class_name):
        """The functions of the first table of a class, each as the set of its names; "pure" where there is none."""
        mangled = self.by_class[class_name]
        begin, size = self.tables[mangled]
        type_name = "_ZTI" + mangled[len("_ZTV") :]
        slot = begin
        while type_name not in self.slots.get(slot, ()):
            slot += ADDRESS_SIZE
            if slot >= begin + size:
                raise LookupError(f"no type information in the table of {class_name}")
        slot += ADDRESS_SIZE
        # A destructor has two slots, for an object that is a part of another and for one from the heap.
        order = [self.functions_at(slot), self.functions_at(slot + ADDRESS_SIZE)]
        if order[0] != order[1]:
            raise LookupError(f"no two slots for the destructor of {class_name}: {order}")
        slot += 2 * ADDRESS_SIZE
        while slot < begin + size and slot in self.slots:
            order.append(self.functions_at(slot))
            slot += ADDRESS_SIZE
        return order[1:]

    def functions_at(self, slot):
        names = sorted(self.slots.get(slot, {"__cxa_pure_virtual"}))
        return {"pure" if name == "__cxa_pure_virtual" else function_of(name) for name in readable(names)}


def main():
    all_tables = [Tables(library) for library in sys.argv[1:]]
    problems = []
    for class_name, expected in EXPECTED.items():
        having = [tables for tables in all_tables if class_name in tables.by_class]
        if not having and class_name not in MAY_BE_MISSING:
            problems.append(f"{class_name}: no library has its table")
        pure = PURE.get(class_name)
        for tables in having:
            order = tables.order(class_name)
            if pure is not None and order[0] == {"pure"}:
                order[0] = {"destructor"}
            wanted = ["pure" if name in (pure or []) else name for name in expected]
            if len(order) != len(wanted) or any(name not in names for name, names in zip(wanted, order)):
                shown = [" or ".join(sorted(names)) for names in order]
                problems.append(f"{class_name}: the slots are\n    " + "\n    ".join(shown))
    for problem in problems:
        print(problem, file=sys.stderr)
    if not problems:
        print(f"{len(EXPECTED)} classes have their virtual functions in order")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
