"""gdb pretty-printers for the library's values, in builds with mingw-w64:

    (gdb) source debug/quon_gdb.py

Framework strings and lists, paths, point strings, point markers as ranges, point arrays, XML objects, pool pages.
"""
import gdb
import gdb.printing


def text_of(string):
    """The characters of a framework string. Its length stands in the record in front of them."""
    characters = string["m_pszData"]
    data = gdb.lookup_type("ATL::CStringData")
    record = (characters.cast(gdb.lookup_type("char").pointer()) - data.sizeof).cast(data.pointer())
    length = int(record["nDataLength"])
    raw = gdb.selected_inferior().read_memory(int(characters), 2 * length) if length else b""
    return bytes(raw).decode("utf-16-le", "replace")


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


class StringPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return quoted(text_of(self.value))


class ArrayPrinter:
    """CPtrArray, CStringArray and the typed arrays over them."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"{int(self.value['m_nSize'])} elements"

    def children(self):
        for index in range(int(self.value["m_nSize"])):
            yield f"[{index}]", self.value["m_pData"][index]

    def display_hint(self):
        return "array"


class ListPrinter:
    """CList: nodes chained by pNext, the value in data."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"{int(self.value['m_nCount'])} elements"

    def children(self):
        node, index = self.value["m_pNodeHead"], 0
        while int(node):
            yield f"[{index}]", node["data"]
            node, index = node["pNext"], index + 1

    def display_hint(self):
        return "array"


class PathPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return quoted(text_of(self.value["m_path"]))


class PointStringPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        text = quoted(text_of(self.value["m_text"]))
        if int(self.value["m_hasError"]):
            return f"{text} (walk stopped at {quoted(text_of(self.value['m_token']))})"
        return f"{text} (walk is over)" if int(self.value["m_isDone"]) else text


def ranges(bits, count, first):
    """The numbers of the set bits as text, runs as ranges: "1-3,5"."""
    parts, index = [], 0
    while index < count:
        if not bits[index // 8]:
            index = (index // 8 + 1) * 8
        elif bits[index // 8] >> index % 8 & 1:
            start = index
            while index < count and bits[index // 8] >> index % 8 & 1:
                index += 1
            low, high = start + first, index - 1 + first
            parts.append(str(low) if low == high else f"{low}-{high}")
        else:
            index += 1
    return ",".join(parts)


class PointMarkerPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        count = int(self.value["m_bitCount"])
        size = (count + 7) // 8
        raw = bytes(gdb.selected_inferior().read_memory(int(self.value["m_bits"]), size)) if size else b""
        return "{" + ranges(raw, count, int(self.value["m_firstNumber"])) + "}"


class PointPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "({}, {}, {})".format(*(float(self.value[name]) for name in "xyz"))


class PointArrayPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"{int(self.value['m_logicalLength'])} points, room for {int(self.value['m_physicalLength'])}"

    def children(self):
        for index in range(int(self.value["m_logicalLength"])):
            yield f"[{index}]", self.value["m_points"][index]

    def display_hint(self):
        return "array"


class XmlPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        name = quoted(text_of(self.value["m_strFileName"]))
        return name if int(self.value["m_pDoc"]["m_pInterface"]) else f"{name} (no document)"


class PageHeaderPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "{inUse} of {capacity} elements of {elementSize} bytes in use".format(
            **{name: int(self.value[name]) for name in ("inUse", "capacity", "elementSize")})


def build_printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("QuonWin32Utils")
    for name, pattern, printer in (
            ("string", r"^(ATL::)?CStringT(<.*>)?$", StringPrinter),
            ("array", r"^C(Ptr|String)Array$", ArrayPrinter),
            ("typed array", r"^CTypedPtrArray<.*>$", ArrayPrinter),
            ("list", r"^CList<.*>$", ListPrinter),
            ("path", r"^QuonPath$", PathPrinter),
            ("point string", r"^Quon((Uns|S)orted)?PointString$", PointStringPrinter),
            ("point marker", r"^QuonPointMarker$", PointMarkerPrinter),
            ("point", r"^VxGePoint3d$", PointPrinter),
            ("point array", r"^VxGePoint3dArray$", PointArrayPrinter),
            ("document", r"^QuonXml$", XmlPrinter),
            ("pool page", r"^QuonBlockPool_details::PageHeader$", PageHeaderPrinter)):
        printers.add_printer(name, pattern, printer)
    return printers


gdb.printing.register_pretty_printer(None, build_printers(), replace=True)
