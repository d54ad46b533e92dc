"""Python's plistlib as the other side of the property-list tests.

  check FILE            succeeds when FILE holds exactly the sample
  make FORMAT FILE      writes the sample ("binary"), or its XML part ("xml")
  convert FORMAT IN OUT reads IN and writes it again
"""
import datetime
import plistlib
import sys

FORMATS = {"binary": plistlib.FMT_BINARY, "xml": plistlib.FMT_XML}


def xml_sample():
    return {
        "yes": True,
        "no": False,
        "integers": [0, 1, -1, 127, 128, 255, 256, 65535, 65536, 2**32 - 1, 2**32,
                     2**63 - 1, -2**63, 2**64 - 1, 2**63],
        "reals": [0.0, -0.5, 3.141592653589793, 1e300, -1e-300],
        "dates": [datetime.datetime(2001, 1, 1), datetime.datetime(1970, 1, 1),
                  datetime.datetime(2015, 1, 2, 12, 34, 56)],
        "data": [b"", b"\x00", b"\x01\x02", b"\x01\x02\x03", bytes(range(256))],
        "texts": ["", "plain", "fourteen chars", "fifteen letters", "exactly sixteen.", "x" * 300,
                  "Gr\u00fc\u00dfe", "e\u0301", "\u65e5\u672c\u8a9e", "emoji \U0001f600",
                  "<&>\"' ]]>", "line\nbreak"],
        "many": list(range(300)),
        "nested": {"": [[], {}], "Schl\u00fcssel": "plain"},
    }


def sample():
    value = xml_sample()
    value["uids"] = [plistlib.UID(0), plistlib.UID(255), plistlib.UID(256), plistlib.UID(65536),
                     plistlib.UID(2**32 - 1)]
    value["nul"] = "a\0b"
    return value


def same(left, right):
    if type(left) is not type(right):
        return False
    if isinstance(left, dict):
        return left.keys() == right.keys() and all(same(left[key], right[key]) for key in left)
    if isinstance(left, list):
        return len(left) == len(right) and all(map(same, left, right))
    return left == right


def main(command, *arguments):
    if command == "check":
        with open(arguments[0], "rb") as file:
            found = plistlib.load(file)
        return 0 if same(found, sample()) else repr(found)
    if command == "make":
        kind, path = arguments
        with open(path, "wb") as file:
            plistlib.dump(sample() if kind == "binary" else xml_sample(), file, fmt=FORMATS[kind])
        return 0
    if command == "convert":
        kind, source, target = arguments
        with open(source, "rb") as file:
            value = plistlib.load(file)
        with open(target, "wb") as file:
            plistlib.dump(value, file, fmt=FORMATS[kind])
        return 0
    return __doc__


sys.exit(main(*sys.argv[1:]))
