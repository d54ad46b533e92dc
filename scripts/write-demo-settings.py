#!/usr/bin/env python3
"""Writes a settings file with one account, in the form that Corvane reads (docs/formats.md)."""

import os
import plistlib
import sys
from plistlib import UID

ACCOUNT = {
    "vendorID": "80012345",
    "email": "demo@example.com",
    "password": "demo password",
    "name": "Demo Account",
}


def account_archive(account):
    fields = list(account)
    first_text = 3
    classes = first_text + len(fields)
    record = {field: UID(first_text + position) for position, field in enumerate(fields)}
    objects = [
        "$null",
        {"NS.objects": [UID(2)], "$class": UID(classes + 1)},
        {**record, "$class": UID(classes)},
        *account.values(),
        {"$classname": "Corvane.ITunesAccount", "$classes": ["Corvane.ITunesAccount", "NSObject"]},
        {"$classname": "NSArray", "$classes": ["NSArray", "NSObject"]},
    ]
    archive = {
        "$archiver": "NSKeyedArchiver",
        "$version": 100000,
        "$top": {"root": UID(1)},
        "$objects": objects,
    }
    return plistlib.dumps(archive, fmt=plistlib.FMT_BINARY)


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: write-demo-settings.py FILE")
    path = sys.argv[1]
    os.makedirs(os.path.dirname(path), mode=0o700, exist_ok=True)
    with open(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), "wb") as file:
        plistlib.dump({"settingsKeyItunesAccounts": account_archive(ACCOUNT)}, file, fmt=plistlib.FMT_BINARY)


main()
