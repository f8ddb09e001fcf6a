#!/usr/bin/python3
"""A server for the tests, on a free port of the loopback address, until standard input ends, or, if a
STOP-FILE is named, until that file is there.

    ftp_server.py DIRECTORY PORT-FILE LOG-FILE ANONYMOUS [STOP-FILE]

Serves DIRECTORY to anonymous users if ANONYMOUS is "yes", and to nobody if it is "no"; if it is
"silent", the server takes connections and never says a word. The port goes to
PORT-FILE, each command that arrives to LOG-FILE. Names of files that have a meaning of their own:

    breaks-off     is sent for 5000 bytes; then the server drops its connections
    silent         is sent for 5000 bytes; then nothing more comes
    answers-NNN    is refused with that number
"""

import os
import re
import socket
import sys
import threading
import time

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler
from pyftpdlib.servers import FTPServer

directory, port_file, log_file, anonymous = sys.argv[1:5]
stop_file = sys.argv[5] if len(sys.argv) > 5 else None
longest_life = 300  # seconds, should nobody ever make the file
log = open(log_file, "w")


class BrokenProducer:
    def __init__(self, producer, data_channel):
        self.producer = producer
        self.data_channel = data_channel
        self.sent = 0

    def more(self):
        if self.sent == 0:
            self.sent = 5000
            return self.producer.more()[:5000]
        self.data_channel.cmd_channel.close()
        return b""


class DataChannel(DTPHandler):
    def sends(self, name):
        return self.file_obj is not None and self.file_obj.name.endswith(name)

    def push_with_producer(self, producer):
        if self.sends("silent"):
            self.push(producer.more()[:5000])
            return
        if self.sends("breaks-off"):
            producer = BrokenProducer(producer, self)
        super().push_with_producer(producer)

    def close_when_done(self):
        if not self.sends("silent"):
            super().close_when_done()


class ControlChannel(FTPHandler):
    authorizer = DummyAuthorizer()
    dtp_handler = DataChannel
    use_sendfile = False
    auth_failed_timeout = 0

    def pre_process_command(self, line, cmd, arg):
        print(line, file=log, flush=True)
        super().pre_process_command(line, cmd, arg)

    def ftp_RETR(self, file):
        answer = re.search(r"answers-(\d{3})$", file)
        if answer is None:
            return super().ftp_RETR(file)
        self.respond(answer.group(1) + " is what this name asks for.")


def tell_port(port):
    with open(port_file + ".new", "w") as file:
        file.write(str(port))
    os.rename(port_file + ".new", port_file)


def wait_for_end(listener):
    if stop_file is None:
        sys.stdin.read()
    else:
        begin = time.monotonic()
        while not os.path.exists(stop_file) and time.monotonic() - begin < longest_life:
            time.sleep(0.02)
        listener.close()
        os.remove(port_file)
    os._exit(0)


if anonymous == "silent":
    silent = socket.create_server(("127.0.0.1", 0))
    tell_port(silent.getsockname()[1])
    wait_for_end(silent)
if anonymous == "yes":
    ControlChannel.authorizer.add_anonymous(directory)
server = FTPServer(("127.0.0.1", 0), ControlChannel)
tell_port(server.address[1])


threading.Thread(target=wait_for_end, args=[server.socket], daemon=True).start()
server.serve_forever()
