"""Stands for a desktop's file manager on the session's bus: owns org.freedesktop.FileManager1 and appends the URLs
of every ShowItems call to a file, one per line. Speaks the bus's own protocol, so that it needs nothing installed.

    file-manager-stub.py LOG [refuse|ignore]

Says "ready" when it owns the name; "refuse" answers every call with an error, "ignore" with nothing. Ends with the bus.
"""

import os
import socket
import struct
import sys

METHOD_CALL, METHOD_RETURN, ERROR = 1, 2, 3
PATH, INTERFACE, MEMBER, ERROR_NAME, REPLY_SERIAL, DESTINATION, SENDER, SIGNATURE = range(1, 9)
NAME = "org.freedesktop.FileManager1"


def padded(data, alignment):
    return data + b"\0" * (-len(data) % alignment)


def text(value):
    value = value.encode()
    return struct.pack("<I", len(value)) + value + b"\0"


def message(kind, serial, fields, body=b""):
    header = b""
    for code, value in fields.items():
        header = padded(header, 8) + bytes([code, 1])
        if code == SIGNATURE:
            header += b"g\0" + bytes([len(value)]) + value.encode() + b"\0"
        elif code == REPLY_SERIAL:
            header = padded(header + b"u\0", 4) + struct.pack("<I", value)
        else:
            header = padded(header + (b"o\0" if code == PATH else b"s\0"), 4) + text(value)
    start = struct.pack("<cBBBIII", b"l", kind, 0, 1, len(body), serial, len(header))
    return padded(start + header, 8) + body


class Reader:
    """Reads marshalled values; positions count from the message's beginning."""

    def __init__(self, data, order):
        self.data, self.position, self.order = data, 0, order

    def align(self, alignment):
        self.position += -self.position % alignment

    def number(self):
        self.align(4)
        self.position += 4
        return struct.unpack_from(self.order + "I", self.data, self.position - 4)[0]

    def bytes(self, length):
        self.position += length + 1
        return self.data[self.position - length - 1:self.position - 1]

    def string(self):
        return self.bytes(self.number())

    def signature(self):
        self.position += 1
        return self.bytes(self.data[self.position - 1])


def receive(connection, count):
    data = b""
    while len(data) < count:
        more = connection.recv(count - len(data))
        if not more:
            sys.exit(0)
        data += more
    return data


def next_message(connection):
    start = receive(connection, 16)
    order = "<" if start[:1] == b"l" else ">"
    body_length, serial, fields_length = struct.unpack(order + "III", start[4:])
    header_length = 16 + fields_length + -fields_length % 8
    header = Reader(start + receive(connection, header_length - 16), order)
    header.position = 16
    fields = {}
    while header.position < 16 + fields_length:
        header.align(8)
        code = header.data[header.position]
        header.position += 1
        kind = header.signature()
        fields[code] = header.number() if kind == b"u" else header.signature() if kind == b"g" else header.string()
    return start[1], serial, fields, Reader(receive(connection, body_length), order)


def connect():
    address = os.environ["DBUS_SESSION_BUS_ADDRESS"].split(",")[0]
    connection = socket.socket(socket.AF_UNIX)
    connection.connect(address.removeprefix("unix:path="))
    connection.sendall(b"\0AUTH EXTERNAL " + str(os.getuid()).encode().hex().encode() + b"\r\n")
    assert connection.recv(200).startswith(b"OK ")
    connection.sendall(b"BEGIN\r\n")
    return connection


def ask_bus(connection, serial, member, fields, body=b""):
    bus = "org.freedesktop.DBus"
    connection.sendall(message(METHOD_CALL, serial, {PATH: "/org/freedesktop/DBus", INTERFACE: bus, MEMBER: member,
                                                     DESTINATION: bus, **fields}, body))
    while True:
        kind, _, answer, _ = next_message(connection)
        if answer.get(REPLY_SERIAL) == serial:
            assert kind == METHOD_RETURN, answer
            return


def main():
    log, manner = sys.argv[1], (sys.argv[2:] or ["answer"])[0]
    connection = connect()
    ask_bus(connection, 1, "Hello", {})
    ask_bus(connection, 2, "RequestName", {SIGNATURE: "su"}, padded(text(NAME), 4) + struct.pack("<I", 4))
    print("ready", flush=True)
    own_serial = 2
    while True:
        kind, serial, fields, body = next_message(connection)
        if kind != METHOD_CALL:
            continue
        own_serial += 1
        reply = {REPLY_SERIAL: serial, DESTINATION: fields[SENDER].decode()}
        # A caller may want to be told first what there is to call.
        if fields[MEMBER] != b"ShowItems":
            connection.sendall(message(ERROR, own_serial, {ERROR_NAME: "org.example.Unknown", **reply}))
            continue
        with open(log, "ab") as file:
            end = body.number() + 4
            while body.position < end:
                file.write(b"ShowItems %s\n" % body.string())
        if manner == "refuse":
            connection.sendall(message(ERROR, own_serial, {ERROR_NAME: "org.example.Refused", **reply}))
        elif manner == "answer":
            connection.sendall(message(METHOD_RETURN, own_serial, reply))


main()
