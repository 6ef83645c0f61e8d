"""The camera's XML API for the programs of the soak: requests, and what an answer must look like."""

import asyncio
import base64
import re
import xml.etree.ElementTree as ElementTree

LOGIN = "Authorization: Basic " + base64.b64encode(b"admin:admin").decode() + "\r\n"
ANSWER_SECONDS = 20  # the machine may be busy with other work; on an idle one an answer takes milliseconds
NAMESPACE = "{http://www.qlx.example/ver10}"
ROOT = '<?xml version="1.0" encoding="UTF-8"?><config version="1.0">%s</config>'
EVER = "<search><starttime>2000-01-01 00:00:00</starttime><endtime>2099-01-01 00:00:00</endtime></search>"


class BadAnswer(Exception):
    pass


def request_text(path, body=None):
    if body is None:
        return ("GET /%s HTTP/1.1\r\nHost: camera\r\n%s\r\n" % (path, LOGIN)).encode()
    return ("POST /%s HTTP/1.1\r\nHost: camera\r\n%sContent-Length: %d\r\n\r\n" % (path, LOGIN, len(body))).encode() + body


async def exchange(address, path, body=None):
    """One request on a connection of its own. @return status and body"""
    return await asyncio.wait_for(_exchange(address, request_text(path, body)), ANSWER_SECONDS)


async def _exchange(address, request):
    reader, writer = await asyncio.open_connection(*address)
    try:
        writer.write(request)
        head = await reader.readuntil(b"\r\n\r\n")
        status = int(head.split(None, 2)[1])
        length = re.search(rb"Content-Length: (\d+)", head)
        return status, await reader.readexactly(int(length.group(1))) if length else await reader.read()
    finally:
        writer.close()


async def ask(address, path, body=None):
    """@return the body of an answer that says yes, and is a document with the root that clients expect"""
    status, answer = await exchange(address, path, body.encode() if body is not None else None)
    if status != 200:
        raise BadAnswer("%s: status %d, %r" % (path, status, answer[-120:]))
    if path.startswith("GetSnapshot"):
        check_picture(path, answer)
    else:
        check_document(path, answer)
    return answer


def check_picture(path, answer):
    if answer[:2] != b"\xff\xd8" or answer[-2:] != b"\xff\xd9":
        raise BadAnswer("%s: no whole JPEG picture: %d bytes" % (path, len(answer)))


def check_document(path, answer):
    try:
        root = ElementTree.fromstring(answer)
    except ElementTree.ParseError as problem:
        raise BadAnswer("%s: %s in %r" % (path, problem, answer[:120]))
    if root.tag != NAMESPACE + "config" and not (path == "camera" and root.tag == "state"):
        raise BadAnswer("%s: the root is %s" % (path, root.tag))
    if root.get("status") == "failed":
        raise BadAnswer("%s: error %s" % (path, root.get("errorCode")))


async def sections(address):
    """What is recorded: (start as text, seconds), in the order of the answer."""
    answer = await ask(address, "SearchByTime/1", ROOT % EVER)
    return [(start.decode(), int(seconds)) for start, seconds in re.findall(
        rb"<starttime[^>]*><!\[CDATA\[(.*?)\]\]></starttime>\s*<seconds[^>]*>(\d+)<", answer)]


def lasting(found):
    """Those sections that no newer recording pushes out of the disk in the next seconds."""
    return found[2:] or found[-1:]


def recording_path(start, seconds):
    """The path of RTSP that plays a recording."""
    year, month, day, hour, minute, second = (int(number) for number in re.findall(r"\d+", start))
    return "/1?date=%d-%d-%d&time=%d:%d:%d&timelen=%d" % (year, month, day, hour, minute, second, seconds)
