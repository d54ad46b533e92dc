#!/usr/bin/env python3
"""Writes the seeds of each target's corpus. What the fuzzer found is kept beside them under names beginning with "found-"."""

import base64
import gzip
import pathlib
import plistlib
import sys
import zlib

CORPUS = pathlib.Path(__file__).resolve().parent / "corpus"

MAC_ARCHIVE = base64.b64decode(
    "YnBsaXN0MDDUAQIDBAUGIyRYJHZlcnNpb25YJG9iamVjdHNZJGFyY2hpdmVyVCR0b3ASAAGGoKcHCA4YGRogVSRudWxs0gkKCw1a"
    "TlMub2JqZWN0c1YkY2xhc3OhDIACgAbVDxAREgoTFBQWF1h2ZW5kb3JJRFVlbWFpbFhwYXNzd29yZFRuYW1lgAOAAIAAgASABVQ0"
    "NzExVERlbW/SGxwdHlokY2xhc3NuYW1lWCRjbGFzc2VzXxAVQ29ydmFuZS5JVHVuZXNBY2NvdW50oh0fWE5TT2JqZWN00hscISJX"
    "TlNBcnJheaIhH18QD05TS2V5ZWRBcmNoaXZlctElJlRyb290gAEACAARABoAIwAtADIANwA/AEUASgBVAFwAXgBgAGIAbQB2AHwA"
    "hQCKAIwAjgCQAJIAlACZAJ4AowCuALcAzwDSANsA4ADoAOsA/QEAAQUAAAAAAAACAQAAAAAAAAAnAAAAAAAAAAAAAAAAAAABBw==")

UID = plistlib.UID

DOMAIN = {
    "settingsKeyItunesAccounts": MAC_ARCHIVE,
    "settingsKeyReportsDownloadedCache": ["20150104", "201501", "2015"],
    "NSWindow Frame settings": "196 240 480 270 0 0 1440 877",
    "number": -5,
    "real": 1.5,
    "flag": True,
    "umlaut": "Käufe \U0001F600",
    "nested": {"a": [[], {}, [1, [2, [3]]]]},
}


def account(fields, class_uid):
    return {**fields, "$class": class_uid}


def archive(objects, root=1):
    return {"$archiver": "NSKeyedArchiver", "$version": 100000, "$top": {"root": UID(root)}, "$objects": objects}


def with_uids_as_dictionaries(value):
    """The XML form knows no UIDs."""
    if isinstance(value, UID):
        return {"CF$UID": value.data}
    if isinstance(value, dict):
        return {key: with_uids_as_dictionaries(member) for key, member in value.items()}
    if isinstance(value, list):
        return [with_uids_as_dictionaries(member) for member in value]
    return value


def archives():
    record = {"$classname": "Corvane.ITunesAccount", "$classes": ["Corvane.ITunesAccount", "NSObject"]}
    array = {"$classname": "NSMutableArray", "$classes": ["NSMutableArray", "NSArray", "NSObject"]}
    text = {"$classname": "NSMutableString", "$classes": ["NSMutableString", "NSString", "NSObject"]}
    names = ("vendorID", "email", "password", "name")
    two = archive([
        "$null", {"NS.objects": [UID(2), UID(3), UID(2)], "$class": UID(8)},
        account(dict(zip(names, (UID(4), UID(5), UID(6), UID(0)))), UID(7)),
        account(dict(zip(names, (UID(4), UID(2), UID(99), UID(9)))), UID(7)),
        "4711", "käufer@example.com", "pass word", record, array, {"NS.string": "Demo", "$class": UID(10)}, text])
    empty = archive(["$null", {"NS.objects": [], "$class": UID(2)}, array])
    yield "mac", MAC_ARCHIVE
    for name, content in (("two", two), ("empty", empty)):
        yield name, plistlib.dumps(content, fmt=plistlib.FMT_BINARY)
        yield name + "-xml", plistlib.dumps(with_uids_as_dictionaries(content), fmt=plistlib.FMT_XML)


def gzipped():
    report = b"Provider\tSKU\tUnits\nAPPLE\tone\t5\n"
    whole = gzip.compress(report * 20, mtime=0)
    named = b"\x1f\x8b\x08\x1c" + bytes(6) + b"\x02\0xy" + b"name\0" + b"comment\0" + zlib.compress(report)[2:-4]
    yield "whole", whole
    yield "cut", whole[:-12]
    yield "wrong-checksum", whole[:-8] + bytes(4) + whole[-4:]
    yield "wrong-size", whole[:-4] + b"\xff\xff\xff\x7f"
    yield "two-members", whole + whole
    yield "extra-fields", named
    yield "bomb", gzip.compress(bytes(300 << 10), mtime=0)
    yield "stored", gzip.compress(report, compresslevel=0, mtime=0)
    yield "not-utf8", gzip.compress(b"abc\xff\xfe", mtime=0)
    yield "plain", report
    yield "magic-only", b"\x1f\x8b"


FEED = '{"version": "1.10", "updateNotes": "Better.", "downloadLink": "https://example.com/a%20b?c#d"}'

ANSWERS = {
    "report": b"HTTP/1.1 200 OK\r\nContent-Disposition: attachment; filename=S_D_1_20150104.txt.gz\r\nContent-Length: 3\r\n\r\nabc",
    "refusal": b"HTTP/1.1 200 OK\r\nERRORMSG: There are no reports\r\nERRORMSG: x\r\nContent-Length: 0\r\n\r\n",
    "chunked": b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\nX: y\r\n\r\n",
    "cut-chunk": b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nabc",
    "continue": b"HTTP/1.1 100 Continue\r\nA: b\r\n\r\nHTTP/1.1 500 No\r\n\r\nbody to the end",
    "redirect": b"HTTP/1.1 307 R\r\nLocation: http://localhost:1/\r\nContent-Length: 0\r\n\r\n",
    "folded": b"HTTP/1.1 200 OK\r\nX: a\r\n b\r\nContent-Encoding: gzip\r\nContent-Length: 2\r\n\r\n\x1f\x8b",
    "old": b"HTTP/1.0 200 OK\r\n\r\nabc",
    "negative": b"HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\nabc",
    "huge": b"HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\nabc",
}

FILE_NAMES = [
    "https://host/autoingestion.tft?",
    "https://host/\nContent-Disposition: attachment; filename=S_D_1_20150104.txt.gz",
    'https://host/a%2Fb%zz\ncontent-disposition:inline;xfilename=no;filename="a;\\"/../b"',
    "https://host\nContent-Disposition: attachment; filename*=UTF-8''%C3%A4%2F%FF; filename=x",
    "\nContent-Disposition: attachment; filename*=iso-8859-1'en'%A3; filename*0=a; filename=; x",
    "/only/path#fragment\nERRORMSG: one\nERRORMSG: two",
]

VERSIONS = ["1.10\n1.9", "1.0\n1.0.0", "\n.", "99999999999999999999.1\n-1.+2. 3", "1.0b2\n１.２"]

FORMS = [
    "user@example.com\npass&=%20+ word\n4711",
    "käufer\n\u20ac\U0001F600\n#1%",
    "\n\n",
    "a\\b|c^d`{e}<f>\n!$()*+,/:;?@]'\n%7%",
]

URLS = ["file:///tmp/a%20b.txt", "file://localhost/x", "https://example.com/", "file:relative", "a b%/ä", "file:///%00%2F"]

OPTIONS = [
    '{"isLite": true}', '{"isLite": 1.5, "isLite": false,}', "{}", "[1, 2]", "\ufeff{\"a\": {\"b\": [null]}}", "no JSON {",
    '{"isLite": "\\ud83d\\ude00\\u0000", "x": 1e400}', "[" * 600 + "]" * 600,
]


def seeds():
    binary = plistlib.dumps(DOMAIN, fmt=plistlib.FMT_BINARY)
    yield "binary_property_list", [("domain", binary[8:]), ("archive", MAC_ARCHIVE[8:])]
    # Without the long data, which only slows the fuzzer down.
    small = {key: value for key, value in DOMAIN.items() if not isinstance(value, bytes)}
    xml = plistlib.dumps({**small, "data": b"abc"}, fmt=plistlib.FMT_XML)
    yield "xml_property_list", [
        ("domain", xml), ("uid", b"<plist><dict><key>CF$UID</key><integer>1</integer></dict></plist>"),
        ("scalars", b"<plist><array><integer>-0x10</integer><real>nan</real><date>2015-01-04T00:00:00Z</date><true/>"
                    b"<string>&#228;&amp;<![CDATA[<]]></string><!-- c --></array></plist>")]
    yield "keyed_archive", list(archives())
    yield "gzip_codec", list(gzipped())
    names = (b"S_D_4711_20150104.txt.gz", b"a/../../b.x", b"", b".", b"a" * 300)
    reports = list(gzipped())
    yield "report_storage", [(f"{index}-{reports[index][0]}", name + b"\n" + reports[index][1])
                             for index, name in enumerate(names)]
    yield "import_options", [(str(index), text.encode()) for index, text in enumerate(OPTIONS)]
    yield "update_feed", [(code, FEED.encode(code)) for code in ("utf-8", "utf-8-sig", "utf-16", "utf-16-be", "utf-32-le")]
    yield "http_answer", list(ANSWERS.items())
    for target, texts in (("suggested_file_name", FILE_NAMES), ("version", VERSIONS), ("form_encoding", FORMS),
                          ("resource_url", URLS)):
        yield target, [(str(index), text.encode()) for index, text in enumerate(texts)]


def main():
    for target, files in seeds():
        folder = CORPUS / target
        folder.mkdir(parents=True, exist_ok=True)
        for name, content in files:
            (folder / f"seed-{name}").write_bytes(content)
    return 0


if __name__ == "__main__":
    sys.exit(main())
