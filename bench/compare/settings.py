"""Settings files with accounts, in the form that Corvane reads (docs/formats.md)."""

import plistlib
from plistlib import UID

FIRST_VENDOR = 80012345


def account(number):
    return {
        "vendorID": str(FIRST_VENDOR + number),
        "email": f"user{number}@example.com",
        "password": "demo password",
        "name": f"Account {number}",
    }


def archive(count):
    objects = ["$null", None]
    records = []
    classes = 2 + count * 5
    for number in range(count):
        fields = account(number)
        start = len(objects)
        records.append(UID(start))
        references = {field: UID(start + 1 + position) for position, field in enumerate(fields)}
        objects += [{**references, "$class": UID(classes)}, *fields.values()]
    objects[1] = {"NS.objects": records, "$class": UID(classes + 1)}
    objects += [
        {"$classname": "Corvane.ITunesAccount", "$classes": ["Corvane.ITunesAccount", "NSObject"]},
        {"$classname": "NSArray", "$classes": ["NSArray", "NSObject"]},
    ]
    return plistlib.dumps(
        {
            "$archiver": "NSKeyedArchiver",
            "$version": 100000,
            "$top": {"root": UID(1)},
            "$objects": objects,
        },
        fmt=plistlib.FMT_BINARY,
    )


def write(path, account_count):
    path.parent.mkdir(mode=0o700, parents=True, exist_ok=True)
    path.write_bytes(
        plistlib.dumps({"settingsKeyItunesAccounts": archive(account_count)}, fmt=plistlib.FMT_BINARY)
    )
    path.chmod(0o600)
