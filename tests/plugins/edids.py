"""EDIDs of no real monitor: made from the fields of the standard, by random numbers that are the same in each run."""
import random
import struct

DISPLAY_ID = 0x70


def with_sum(block):
    return block[:127] + bytes([-sum(block[:127]) & 0xff])


def text(kind, content):
    return bytes([0, 0, 0, kind, 0]) + (content + b"\n").ljust(13)[:13]


def timing(clock, width, height, more, millimetres=(0, 0), interlaced=False):
    """A detailed timing: a clock in units of 10 kHz, and blanking of so many columns and lines."""
    columns, lines = more
    return struct.pack("<HBBBBBBBBBBBBBBBB", clock, width & 255, columns & 255, width >> 8 << 4 | columns >> 8,
                       height & 255, lines & 255, height >> 8 << 4 | lines >> 8, 48, 32, 0x35, 0,
                       millimetres[0] & 255, millimetres[1] & 255, millimetres[0] >> 8 << 4 | millimetres[1] >> 8,
                       0, 0, 0x9e if interlaced else 0x1e)


def base(maker="XMP", product=1, serial=0, week=1, year=2020, version=(1, 4), video=0xa5, size=(60, 34), gamma=120,
         descriptors=(), extensions=0):
    letters = [ord(letter) - 64 for letter in maker]
    block = b"\0\xff\xff\xff\xff\xff\xff\0"
    block += struct.pack(">H", letters[0] << 10 | letters[1] << 5 | letters[2])
    block += struct.pack("<HIBBBBBBBBB", product, serial, week, year - 1990, *version, video, *size, gamma, 0x06)
    block += bytes.fromhex("ee91a3544c99260f5054") + b"\0" * 3 + b"\1" * 16
    for descriptor in (*descriptors, *[bytes([0, 0, 0, 0x10, 0]) + b"\0" * 13] * 4)[:4]:
        block += descriptor
    return with_sum(block + bytes([extensions]))


def cta():
    return with_sum(bytes([2, 3, 4, 0]).ljust(127, b"\0"))


def display_id(blocks, version=0x12):
    data = b"".join(bytes([kind, 0, len(content)]) + content for kind, content in blocks)
    section = bytes([version, len(data), 0, 0]) + data
    return with_sum((bytes([DISPLAY_ID]) + section + bytes([-sum(section) & 0xff])).ljust(127, b"\0"))


def native(width, height):
    return 0x01, struct.pack("<HHHHBBBB", 11900, 3370, width, height, 0, 0, 0, 0)


def wide_timing(clock, width, height, more, preferred):
    columns, lines = more
    return 0x03, (struct.pack("<I", clock - 1)[:3] + bytes([0x80 if preferred else 0])
                  + struct.pack("<HHHHHHHH", width - 1, columns - 1, 7, 31, height - 1, lines - 1, 2, 9))


def word(source, most):
    return bytes(source.choice(b"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 -") for _ in range(source.randint(1, most)))


def random_timing(source, size):
    width, height = source.randint(320, 4095), source.randint(200, 2400)
    interlaced = source.random() < 0.1
    return timing(source.randint(2000, 65535), width, height // 2 if interlaced else height,
                  (source.randint(80, 400), source.randint(12, 90)),
                  source.choice([(0, 0), (16, 9), (size[0] * 10 + 3, size[1] * 10 - 4)]), interlaced)


def random_extension(source):
    if source.random() < 0.5:
        return cta()
    width, height = source.randint(4096, 8000), source.randint(1000, 4000)
    blocks = [wide_timing(source.randint(30000, 200000), width, height, (160, 60), True)]
    if source.random() < 0.5:
        blocks.insert(0, native(width, height))
    return display_id(blocks)


def random_edid(source):
    size = (source.randint(10, 200), source.randint(10, 150))
    extensions = [random_extension(source) for _ in range(source.choice([0, 0, 1, 1, 2]))]
    descriptors = [random_timing(source, size)]
    descriptors += source.sample([text(0xfc, word(source, 13)), text(0xff, word(source, 13)),
                                  text(0xfe, word(source, 13)), random_timing(source, size)], 3)
    version = (1, source.randint(1, 4))
    analog = source.random() < 0.3
    video = 0x0e if analog else 0x80 | (source.randint(0, 6) << 4 | source.randint(0, 5) if version[1] == 4 else 0)
    block = base("".join(source.choice("ABCDEFGHIJKLMNOPQRSTUVWXYZ") for _ in range(3)), source.randrange(1 << 16),
                 source.choice([0, 0x01010101, source.randrange(1 << 32)]),
                 source.choice([0, 255, source.randint(1, 53)]), source.randint(1996, 2024), version, video, size, source.randrange(256), descriptors,
                 len(extensions))
    return block + b"".join(extensions)


def mutated(source, edid):
    """With some bytes changed; sometimes the checksum fits again, sometimes the end is missing."""
    changed = bytearray(edid)
    for _ in range(source.randint(1, 6)):
        changed[source.randrange(8, len(changed))] = source.randrange(256)
    if source.random() < 0.6:
        changed[:128] = with_sum(bytes(changed[:128]))
    return bytes(changed[:source.choice([len(changed), 128])])


def random_edids(count):
    source = random.Random(1)
    made = [random_edid(source) for _ in range(count)]
    return made + [mutated(source, edid) for edid in made]
