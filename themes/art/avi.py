"""Turns rendered frames into an AVI clip that the platform's animation control plays: one video stream of
8-bit frames compressed with BI_RLE8, every frame a key frame, one palette for the whole clip.

The animation control of the common controls plays only uncompressed or RLE8 clips, and it keys out the
colour of the top-left pixel when it is made with ACS_TRANSPARENT: draw the frames on a flat ground.

    write_clip(path, frames, width, height, microseconds_per_frame)

`frames` are lists of rows of (r, g, b) tuples, top row first. Only the standard library is used, so that the
build needs nothing beyond Python and rsvg-convert."""
import struct
import zlib


# --- PNG ------------------------------------------------------------------------------------------------------

def read_png(data, ground=(255, 255, 255)):
    """The pixels of an 8-bit RGB or RGBA PNG (as rsvg-convert writes them) as rows of (r, g, b), with any
    transparency laid over `ground`. Returns (width, height, rows)."""
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError("not a PNG file")
    at, idat, header = 8, [], None
    while at + 8 <= len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat.append(body)
        elif kind == b"IEND":
            break
        at += 12 + length
    if header is None:
        raise ValueError("PNG without a header")
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour not in (2, 6) or interlace:
        raise ValueError("only 8-bit RGB or RGBA PNG files without interlacing are read")
    step = 4 if colour == 6 else 3
    raw = zlib.decompress(b"".join(idat))
    stride = width * step
    rows, previous = [], bytearray(stride)
    for y in range(height):
        kind = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        _unfilter(kind, line, previous, step)
        rows.append(_pixels(line, width, step, ground))
        previous = line
    return width, height, rows


def _unfilter(kind, line, previous, step):
    if kind == 1:
        for i in range(step, len(line)):
            line[i] = (line[i] + line[i - step]) & 255
    elif kind == 2:
        for i in range(len(line)):
            line[i] = (line[i] + previous[i]) & 255
    elif kind == 3:
        for i in range(len(line)):
            left = line[i - step] if i >= step else 0
            line[i] = (line[i] + ((left + previous[i]) >> 1)) & 255
    elif kind == 4:
        for i in range(len(line)):
            a = line[i - step] if i >= step else 0
            b = previous[i]
            c = previous[i - step] if i >= step else 0
            p = a + b - c
            pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
            predictor = a if pa <= pb and pa <= pc else (b if pb <= pc else c)
            line[i] = (line[i] + predictor) & 255
    elif kind != 0:
        raise ValueError("unknown PNG filter %d" % kind)


def _pixels(line, width, step, ground):
    if step == 3:
        return [tuple(line[x * 3:x * 3 + 3]) for x in range(width)]
    out = []
    for x in range(width):
        r, g, b, a = line[x * 4:x * 4 + 4]
        if a == 255:
            out.append((r, g, b))
        else:
            out.append(tuple((c * a + k * (255 - a) + 127) // 255 for c, k in zip((r, g, b), ground)))
    return out


# --- One palette for all frames -------------------------------------------------------------------------------

def make_palette(frames, first, limit=256):
    """A palette of at most `limit` colours for every pixel of `frames`, with `first` (the ground) as entry 0,
    exactly. Returns (palette, lookup) where lookup maps each colour met to its index. Few colours are kept as
    they are; more are reduced by a median cut weighted by how often each colour occurs."""
    counts = {}
    for frame in frames:
        for row in frame:
            for colour in row:
                counts[colour] = counts.get(colour, 0) + 1
    others = sorted(c for c in counts if c != first)  # the same order for a film and its mirror
    if len(others) < limit:
        palette = [first] + others
        return palette, {c: i for i, c in enumerate(palette)}
    boxes = [others]
    while len(boxes) < limit - 1:
        # Split the box whose colours spread widest (weighted by use) at the median of that channel.
        best, best_score = None, 0
        for i, box in enumerate(boxes):
            if len(box) < 2:
                continue
            spread, channel = max((max(c[k] for c in box) - min(c[k] for c in box), k) for k in range(3))
            score = spread * sum(counts[c] for c in box)
            if score > best_score:
                best, best_score, best_channel = i, score, channel
        if best is None:
            break
        box = sorted(boxes[best], key=lambda c: (c[best_channel], c))
        total, running, cut = sum(counts[c] for c in box), 0, 1
        for cut in range(1, len(box)):
            running += counts[box[cut - 1]]
            if running * 2 >= total:
                break
        boxes[best:best + 1] = [box[:cut], box[cut:]]
    palette, lookup = [first], {first: 0}
    for box in boxes:
        weight = sum(counts[c] for c in box)
        mean = tuple((sum(c[k] * counts[c] for c in box) + weight // 2) // weight for k in range(3))
        for colour in box:
            lookup[colour] = len(palette)
        palette.append(mean)
    return palette, lookup


# --- RLE8 and the AVI file ------------------------------------------------------------------------------------

def rle8(indices, width, height):
    """BI_RLE8 data of a bottom-up 8-bit picture given as top-down rows of palette indices: runs of one index,
    an end-of-line after each row but the last, and an end-of-bitmap. A full frame, with no skips."""
    out = bytearray()
    for y in range(height - 1, -1, -1):
        row = indices[y]
        x = 0
        while x < width:
            run = 1
            while x + run < width and run < 255 and row[x + run] == row[x]:
                run += 1
            out += bytes((run, row[x]))
            x += run
        out += b"\x00\x00" if y else b"\x00\x01"
    return bytes(out)


def _chunk(fourcc, body):
    return fourcc + struct.pack("<I", len(body)) + body + (b"\x00" if len(body) % 2 else b"")


def _list(kind, body):
    return _chunk(b"LIST", kind + body)


def write_clip(path, frames, width, height, microseconds_per_frame):
    """Writes `frames` (all of `width` x `height`) as an RLE8 AVI clip to `path`. The top-left pixel of the
    first frame is the ground: it gets palette entry 0."""
    if not frames or any(len(f) != height or any(len(r) != width for r in f) for f in frames):
        raise ValueError("frames of %d x %d expected" % (width, height))
    palette, lookup = make_palette(frames, frames[0][0][0])
    data = [rle8([[lookup[c] for c in row] for row in frame], width, height) for frame in frames]
    largest = max(len(d) for d in data)
    count = len(frames)

    avih = struct.pack("<14I", microseconds_per_frame, largest * 1000000 // microseconds_per_frame, 0,
                       0x10,  # AVIF_HASINDEX
                       count, 0, 1, largest, width, height, 0, 0, 0, 0)
    strh = struct.pack("<4s4sIHHIIIIIIIIhhhh", b"vids", b"RLE ", 0, 0, 0, 0,
                       microseconds_per_frame, 1000000, 0, count, largest, 0xFFFFFFFF, 0, 0, 0, width, height)
    # biSizeImage holds the largest frame, so that a player which reads the shared header sees each whole.
    strf = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 8, 1, largest, 0, 0, len(palette), 0)
    strf += b"".join(struct.pack("<4B", b, g, r, 0) for r, g, b in palette)
    hdrl = _list(b"hdrl", _chunk(b"avih", avih) + _list(b"strl", _chunk(b"strh", strh) + _chunk(b"strf", strf)))

    movi, index, offset = b"", b"", 4  # index offsets count from the list's "movi"
    for d in data:
        chunk = _chunk(b"00dc", d)
        index += struct.pack("<4sIII", b"00dc", 0x10, offset, len(d))  # AVIIF_KEYFRAME
        movi += chunk
        offset += len(chunk)
    body = b"AVI " + hdrl + _list(b"movi", movi) + _chunk(b"idx1", index)
    with open(path, "wb") as out:
        out.write(b"RIFF" + struct.pack("<I", len(body)) + body)
