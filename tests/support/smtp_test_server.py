"""A real SMTP server for the mailing tests, on 127.0.0.1.

Usage: smtp_test_server.py FOLDER [--refuse ADDRESS]... [--user U --password P]

Listens on a free port and prints "PORT <n>" once ready. Every message it
accepts is saved as FOLDER/<n>.eml, its envelope beside it as FOLDER/<n>.json
(sender, recipients, the connection it came on). A refused address gets
"550 5.1.1 Destinataire inconnu". With --user, AUTH PLAIN/LOGIN is required
(offered without TLS, this server being local). Stops on end of standard input.
"""
import argparse
import asyncio
import json
import os
import socket
import sys
import threading

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult


class Handler:
    def __init__(self, folder, refused):
        self.folder = folder
        self.refused = {a.lower() for a in refused}
        self.count = 0
        self.connections = 0
        self.lock = threading.Lock()

    async def handle_EHLO(self, server, session, envelope, hostname, responses):
        with self.lock:
            self.connections += 1
            session.orve_connection = self.connections
        session.host_name = hostname
        return responses

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if address.lower() in self.refused:
            return "550 5.1.1 Destinataire inconnu"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        with self.lock:
            self.count += 1
            n = self.count
        base = os.path.join(self.folder, "%03d" % n)
        with open(base + ".eml.part", "wb") as f:
            f.write(envelope.original_content or envelope.content)
        os.replace(base + ".eml.part", base + ".eml")
        with open(base + ".json.part", "w") as f:
            json.dump({"from": envelope.mail_from, "to": envelope.rcpt_tos,
                       "connection": getattr(session, "orve_connection", 0)}, f)
        os.replace(base + ".json.part", base + ".json")
        return "250 Message accepte"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--refuse", action="append", default=[])
    parser.add_argument("--user")
    parser.add_argument("--password")
    args = parser.parse_args()

    handler = Handler(args.folder, args.refuse)
    kwargs = {}
    if args.user:
        def authenticate(server, session, envelope, mechanism, auth_data):
            ok = (auth_data.login.decode() == args.user and
                  auth_data.password.decode() == args.password)
            return AuthResult(success=ok)
        kwargs = {"authenticator": authenticate, "auth_required": True,
                  "auth_require_tls": False}
    # A port the system gives free; taken again at once (another process
    # could only win it in between by chance, and then the next try goes).
    for attempt in range(5):
        probe = socket.socket()
        probe.bind(("127.0.0.1", 0))
        port = probe.getsockname()[1]
        probe.close()
        controller = Controller(handler, hostname="127.0.0.1", port=port,
                                decode_data=False, **kwargs)
        try:
            controller.start()
            break
        except Exception:
            if attempt == 4:
                raise
    print("PORT %d" % port, flush=True)
    try:
        sys.stdin.read()
    finally:
        controller.stop()


if __name__ == "__main__":
    main()
