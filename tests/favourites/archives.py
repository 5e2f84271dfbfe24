"""archives.py write FOLDER: keyed archives as other programs write them, and files that are none.
archives.py show FILE: what stands in a keyed archive of stations, with its types, as JSON."""

import datetime
import json
import pathlib
import plistlib
import sys
from plistlib import UID

FIELDS = ("name genre mid mountType bitrate listener stars imageFilePath volume bass midrange treble custom url port "
          "mountpoint password username radioIsPrivate radioscheme radioUuid").split()
FULL = dict(name="Plätze 🎧", genre="\ufeffJazz", mid="7", mountType="", bitrate=128.5, listener=-3, stars=2**62,
            imageFilePath="$null", volume=6.0, bass=-0.0, custom=True, url=b"\0bytes", port=80, radioIsPrivate=False)


class Archive:
    def __init__(self):
        self.objects = ["$null"]

    def add(self, value):
        self.objects.append(value)
        return UID(len(self.objects) - 1)

    def instance(self, names, **values):
        names = names.split()
        return self.add({**values, "$class": self.add({"$classname": names[0], "$classes": [*names, "NSObject"]})})

    def record(self, names="RadioModel", inline=False, **values):
        return self.instance(names, **{key: value if inline or isinstance(value, UID) else self.add(value)
                                       for key, value in values.items()})

    def list(self, *elements, names="NSArray"):
        return self.instance(names, **{"NS.objects": list(elements)})

    def bytes(self, root, top=None, archiver="NSKeyedArchiver"):
        return plistlib.dumps({"$version": 100000, "$archiver": archiver, "$top": {"root": root, **(top or {})},
                               "$objects": self.objects}, fmt=plistlib.FMT_BINARY, sort_keys=False)


def backwards(node, last):
    if isinstance(node, UID):
        return UID(last + 1 - node.data) if node.data else node
    if isinstance(node, dict):
        return {key: backwards(node[key], last) for key in reversed(node)}
    return [backwards(child, last) for child in node] if isinstance(node, list) else node


def bplist(objects, top=0):
    body, offsets = b"bplist00", []
    for one in objects:
        offsets.append(len(body))
        body += one
    return body + b"".join(at.to_bytes(4, "big") for at in offsets) + bytes(6) + b"\4\4" + b"".join(
        number.to_bytes(8, "big") for number in (len(objects), top, len(body)))


def array(*children):
    return b"\xaf\x12" + len(children).to_bytes(4, "big") + b"".join(child.to_bytes(4, "big") for child in children)


def archives():
    def one(**values):
        archive = Archive()
        return archive.bytes(archive.list(archive.record(**values)))

    yield "full", one(**FULL)
    yield "inline", one(inline=True, **FULL)
    yield "sparse", one(name="only")
    yield "unknown-key", one(name="n", colour="red")
    yield "dangling", one(name=UID(999))
    yield "nul", one(name="a\0b", genre="kept")
    yield "subclass", one(names="MyRadio RadioModel", name="n")

    archive = Archive()
    root = archive.list(archive.record(**FULL))
    last = len(archive.objects) - 1
    archive.objects[1:] = [backwards(node, last) for node in reversed(archive.objects[1:])]
    yield "backwards", archive.bytes(backwards(root, last))

    archive = Archive()
    text = archive.instance("NSMutableString NSString", **{"NS.string": "mutable"})
    yield "mutable", archive.bytes(archive.list(archive.record(name=text, genre=text), names="NSMutableArray NSArray"))

    archive = Archive()
    date = archive.instance("NSDate", **{"NS.time": 1.5})
    items = archive.list(date, UID(0), archive.add("deep"), date)
    archive.objects[items.data]["NS.objects"].append(items)
    root = archive.list(archive.record(name=items, genre=date, mid=2**63, bitrate=datetime.datetime(2001, 2, 3)),
                        archive.record(name=items, url=archive.instance("NSURL", **{"NS.relative": archive.add("u")})))
    first, second = archive.objects[root.data]["NS.objects"]
    archive.objects[second.data].update(port=first, stars=[items, 2**64 - 5])
    yield "objects", archive.bytes(root)

    archive = Archive()
    record = archive.record(name="kept")
    root = archive.list(archive.add("text"), record, UID(0), UID(999), record, archive.record(names="NSURL"))
    archive.objects[root.data]["NS.objects"].append(root)
    yield "elements", archive.bytes(root)

    archive = Archive()
    record = archive.record(name="n")
    yield "list-key", archive.bytes(archive.instance("NSArray", **{"NS.objects": [record], "more": 1}))
    yield "top-key", archive.bytes(archive.list(record), top={"other": record})
    yield "empty", archive.bytes(archive.list())
    yield "list-subclass", archive.bytes(archive.list(names="MyList NSMutableArray NSArray"))
    yield "root-record", archive.bytes(record)
    yield "root-map", archive.bytes(archive.instance("NSDictionary", **{"NS.keys": [], "NS.objects": [record]}))
    yield "root-text", archive.bytes(archive.add("text"))
    yield "root-nothing", archive.bytes(UID(0))
    yield "no-elements", archive.bytes(archive.instance("NSArray"))
    yield "too-many", archive.bytes(archive.list(*[record] * 100001))
    yield "other-archiver", archive.bytes(archive.list(), archiver="NSArchiver")
    yield "no-archive", plistlib.dumps(["text"], fmt=plistlib.FMT_BINARY)
    yield "xml", plistlib.dumps({"$objects": []})

    yield "shared", bplist([array(*[level + 1] * 8) for level in range(12)] + [b"\x51a"])
    yield "deep", bplist([array(level + 1) for level in range(100000)] + [b"\x51a"])
    yield "itself", bplist([array(0)])
    yield "long-texts", bplist([array(*[1] * 100000), b"\x5f\x12\x00\x10\x00\x00" + b"a" * 2**20])
    yield "wide-number", bplist([array(1), b"\x14" + b"\1" * 16])
    yield "long-count", bplist([b"\xaf\x13\xff\xff\xff\xff\xff\xff\xff\xff"])
    yield "nul-key", bplist([b"\xd1" + bytes((0, 0, 0, 1, 0, 0, 0, 1)), b"\x51\0"])
    yield "no-key", bplist([b"\xd1" + bytes((0, 0, 0, 1, 0, 0, 0, 1)), b"\x10\1"])


def shown(objects, node, above=()):
    """Texts, lists and their mutable kinds look alike; a way back up is shown as its length."""
    if isinstance(node, UID):
        if node.data == 0 or node.data >= len(objects):
            return None
        if node.data in above:
            return ["cycle", len(above) - above.index(node.data)]
        return shown(objects, objects[node.data], above + (node.data,))
    if isinstance(node, list):
        return [shown(objects, child, above) for child in node]
    if isinstance(node, dict) and "$class" in node:
        name = objects[node["$class"].data]["$classname"]
        if "NS.string" in node:
            return shown(objects, node["NS.string"], above)
        keys = FIELDS if name == "RadioModel" else node.keys() - {"$class"}
        return {"class": name.replace("Mutable", ""), **{key: shown(objects, node.get(key), above) for key in keys}}
    return None if node is None else [type(node).__name__, repr(node)]


if __name__ == "__main__":
    if sys.argv[1] == "write":
        for name, content in archives():
            (pathlib.Path(sys.argv[2]) / name).write_bytes(content)
    else:
        archive = plistlib.loads(pathlib.Path(sys.argv[2]).read_bytes())
        objects = archive["$objects"]
        records = [one for one in objects if isinstance(one, dict) and "radioUuid" in one]
        json.dump({"genuine": list(archive) == ["$version", "$archiver", "$top", "$objects"]
                   and (archive["$version"], archive["$archiver"], objects[0]) == (100000, "NSKeyedArchiver", "$null")
                   and all(list(record) == [*FIELDS, "$class"] for record in records),
                   "classes": [one["$classes"] for one in objects if isinstance(one, dict) and "$classes" in one],
                   "root": shown(objects, archive["$top"]["root"])}, sys.stdout, sort_keys=True)
