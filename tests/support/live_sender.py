#!/usr/bin/env python3
"""Sends a live stream by ffmpeg: each picture shows the time at which it was made, and once a second it flashes and
beeps, over a low noise. Ends when its standard input is closed.

usage: live_sender.py SIZE GOP ENCODING -- arguments of ffmpeg for the output
       live_sender.py relay LISTEN_PORT TARGET_PORT LOSS_PERCENT JITTER_MS

The upper quarter of a picture has sixteen black or white blocks, the bits of the monotonic clock in milliseconds, the
lowest on the left. A second begins with a picture that is white below, and 40 ms of a tone.
ENCODING is "h264" or "h264-bframes".
relay passes datagrams on, and loses and delays some.
"""
import array
import heapq
import math
import os
import random
import select
import socket
import subprocess
import sys
import time

RATE = 25
SAMPLES = 48000 // RATE
BITS = 16


def ended():
    return bool(select.select([sys.stdin], [], [], 0)[0])


def picture(width, height, milliseconds, flash):
    block = width // BITS
    row = b"".join((b"\xeb" if milliseconds >> bit & 1 else b"\x10") * block for bit in range(BITS))
    row += b"\x10" * (width - len(row))
    below = (b"\xeb" if flash else b"\x5a") * width
    luma = row * (height // 4) + below * (height - height // 4)
    return luma + b"\x80" * (width * height // 2)


def feed(video, audio, width, height):
    tone = array.array("h", (int(16000 * math.sin(2 * math.pi * 1000 * n / 48000)) for n in range(SAMPLES)))
    beep = array.array("h", (value for value in tone for _ in (0, 1))).tobytes()
    # Digital silence is coded in a few bytes, which parsers collect for half a second.
    chance = random.Random(1)
    quiet = array.array("h", (chance.randrange(-300, 300) for _ in range(2 * SAMPLES))).tobytes()
    start = time.monotonic()
    frame = 0
    try:
        while not ended():
            delay = start + frame / RATE - time.monotonic()
            if delay > 0:
                time.sleep(delay)
            flash = frame % RATE == 0
            milliseconds = int(time.monotonic() * 1000) & 0xFFFF
            os.write(audio, beep if flash else quiet)
            data = memoryview(picture(width, height, milliseconds, flash))
            while data:
                data = data[os.write(video, data):]
            frame += 1
    except (BrokenPipeError, KeyboardInterrupt):
        pass


def send(size, gop, encoding, output):
    width, height = (int(part) for part in size.split("x"))
    video_in, video_out = os.pipe()
    audio_in, audio_out = os.pipe()
    coding = ["-c:v", "libx264", "-preset", "ultrafast", "-g", gop, "-keyint_min", gop, "-sc_threshold", "0"]
    coding += ["-bf", "2"] if encoding == "h264-bframes" else ["-tune", "zerolatency"]
    raw = ["-probesize", "32", "-analyzeduration", "0", "-thread_queue_size", "64"]
    command = ["ffmpeg", "-nostdin", "-v", "error"]
    command += raw + ["-f", "rawvideo", "-pix_fmt", "yuv420p", "-s", size, "-r", str(RATE), "-i", f"pipe:{video_in}"]
    command += raw + ["-f", "s16le", "-ar", "48000", "-ac", "2", "-i", f"pipe:{audio_in}"]
    command += coding + ["-c:a", "aac", "-b:a", "96k", "-flush_packets", "1"] + output
    encoder = subprocess.Popen(command, pass_fds=(video_in, audio_in))
    os.close(video_in)
    os.close(audio_in)
    feed(video_out, audio_out, width, height)
    encoder.kill()
    encoder.wait()


def relay(listen, target, loss, jitter):
    chance = random.Random(1)
    incoming = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    incoming.bind(("127.0.0.1", listen))
    outgoing = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    waiting = []
    last_due = 0
    while not ended():
        due = waiting[0][0] - time.monotonic() if waiting else 0.1
        if select.select([incoming], [], [], max(0, min(due, 0.1)))[0]:
            data = incoming.recv(65536)
            if chance.random() * 100 >= loss:
                # In order, as on one route.
                last_due = max(last_due, time.monotonic() + chance.random() * jitter / 1000)
                heapq.heappush(waiting, (last_due, id(data), data))
        while waiting and waiting[0][0] <= time.monotonic():
            outgoing.sendto(heapq.heappop(waiting)[2], ("127.0.0.1", target))


if __name__ == "__main__":
    if sys.argv[1] == "relay":
        relay(int(sys.argv[2]), int(sys.argv[3]), float(sys.argv[4]), float(sys.argv[5]))
    else:
        send(sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[sys.argv.index("--") + 1:])
