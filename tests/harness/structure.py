"""Whether a file is whole, by its structure alone: "" or what is wrong."""

import json
import re
import struct
import zlib


def png(data):
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        return "no PNG"
    at, pixels = 8, b""
    while at + 12 <= len(data):
        size = struct.unpack_from(">I", data, at)[0]
        kind, body = data[at + 4:at + 8], data[at + 8:at + 8 + size]
        if data[at + 8 + size:at + 12 + size] != struct.pack(">I", zlib.crc32(kind + body)):
            return f"chunk {kind} is damaged"
        pixels += body if kind == b"IDAT" else b""
        at += 12 + size
        if kind == b"IEND":
            zlib.decompress(pixels)
            return "" if at == len(data) else "bytes behind the end"
    return "no end"


def tiff(data):
    if data[:4] != b"II*\0":
        return "no TIFF"
    at = struct.unpack_from("<I", data, 4)[0]
    count = struct.unpack_from("<H", data, at)[0]
    if at + 2 + 12 * count + 4 > len(data):
        return "the directory is cut"
    numbers = {}
    for entry in range(count):
        tag, kind, size, value = struct.unpack_from("<HHII", data, at + 2 + 12 * entry)
        width = {1: 1, 2: 1, 3: 2, 4: 4, 5: 8}.get(kind, 4)
        if size * width > 4 and value + size * width > len(data):
            return f"tag {tag} goes beyond the file"
        if kind in (3, 4):
            place = value if size * width > 4 else at + 2 + 12 * entry + 8
            numbers[tag] = struct.unpack_from(f"<{size}{'H' if kind == 3 else 'I'}", data, place)
    ends = [first + size for first, size in zip(numbers[273], numbers[279])]
    if max(ends) > len(data):
        return "a strip goes beyond the file"
    bits, rows = numbers[258][0], numbers[257][0]
    wanted = numbers[256][0] * rows * bits // 8
    return "" if sum(numbers[279]) == wanted else "rows are missing"


def pdf(data):
    found = re.search(rb"startxref\s+(\d+)\s+%%EOF\s*$", data)
    if not data.startswith(b"%PDF-") or not found:
        return "no beginning or no end of a PDF"
    table = data[int(found[1]):]
    places = re.findall(rb"(\d{10}) 00000 n", table)
    wrong = [place for place in places if not re.match(rb"\d+ 0 obj", data[int(place):])]
    return f"{len(wrong)} objects are not where the table says" if wrong or not places else ""


def hdf5(data):
    if data[:8] != b"\x89HDF\r\n\x1a\n":
        return "no HDF5"
    at = {0: 40, 1: 44}.get(data[8], 28)  # where a superblock of this version has the file's end
    end = struct.unpack_from("<Q", data, at)[0]
    return "" if end == len(data) else f"{len(data)} bytes, {end} by its head"


def jpeg(data):
    return "" if data[:2] == b"\xff\xd8" and data[-2:] == b"\xff\xd9" else "no beginning or end"


def bmp(data):
    whole = data[:2] == b"BM" and struct.unpack_from("<I", data, 2)[0] == len(data)
    return "" if whole else "another size than its head says"


def ppm(data):
    head = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", data)
    if not head:
        return "no head"
    wanted = head.end() + 3 * int(head[1]) * int(head[2])
    return "" if wanted == len(data) else f"{len(data)} bytes of {wanted}"


def report(data):
    return "" if "totals" in json.loads(data)[-1] else "no totals"


def table(data):
    """Rows of the same number of values, the last one ended."""
    if not data.endswith(b"\n"):
        return "the last line is cut"
    lines = [line for line in data.decode().splitlines() if line and line[0] != "#"]
    values = {len(line.split("," if "," in line else None)) for line in lines}
    return "" if len(values) == 1 else f"rows of {sorted(values)} values"


def energy_map(data):
    lines = data.decode().splitlines()
    if "##-----------------" not in lines or not data.endswith(b"\n"):
        return "no values or a cut line"
    size = [int(line.split()[-1]) for line in lines if line.startswith(("Width", "Height"))]
    values = lines[lines.index("##-----------------") + 1:]
    numbers = [number for line in values for number in line.split()]
    return "" if len(numbers) == size[0] * size[1] else f"{len(numbers)} values of {size}"


def batch(data):
    whole = data.startswith(b":rem_start\n") and data.endswith(b"\n") and b"\n:rem_end\n" in data
    return "" if whole else "no head or a cut line"


KINDS = {
    "bat": batch, "bmp": bmp, "csv": table, "dat": table, "emp": energy_map, "jpg": jpeg,
    "json": report, "nxs": hdf5, "pdf": pdf, "png": png, "ppm": ppm, "tif": tiff, "txt": table,
}


def fault_of(name, data):
    """By the suffix of the name."""
    kind = KINDS["tif" if name in ("flat.dat", "dark.dat") else name.rsplit(".", 1)[1]]
    try:
        return kind(data)
    except (ValueError, KeyError, IndexError, struct.error, zlib.error) as error:
        return f"damaged: {error!r}"
