# SPDX-FileCopyrightText: 2026 The Marvola authors
# SPDX-License-Identifier: MIT
"""A sound file for the tests that are written in Python."""
import struct


def _chunk(name, content):
    return name + struct.pack("<I", len(content)) + content + b"\0" * (len(content) % 2)


def wave_file(artist="", album="", genre=""):
    """The bytes of a short WAV file with these texts; empty ones are left out."""
    texts = b"".join(_chunk(name, text.encode() + b"\0") for name, text in
                     ((b"IART", artist), (b"IPRD", album), (b"IGNR", genre)) if text)
    pcm = struct.pack("<HHIIHH", 1, 1, 8000, 16000, 2, 16)  # one channel, 8,000 samples of 16 bits a second
    return _chunk(b"RIFF", b"WAVE" + _chunk(b"fmt ", pcm) + _chunk(b"LIST", b"INFO" + texts) +
                  _chunk(b"data", b"\0" * 320))
