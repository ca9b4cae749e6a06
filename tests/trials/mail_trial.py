"""Mail servers of several kinds, the mails that the sender hands to them, and what must come of
each; see scripts/mail-trial."""
import datetime
import email
import email.policy
import email.utils
import os
import shlex
import socket
import ssl
import subprocess
import sys
import time

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult

FOLDER = sys.argv[1]
SENDER = shlex.split(os.environ["ORVANE_MAIL_TRIAL"])
PORT = int(os.environ.get("ORVANE_MAIL_PORT", "18025"))
UNDER_WINE = "wine" in SENDER[0]
CA = os.path.join(FOLDER, "ca.pem")
PICTURE = os.path.join(FOLDER, "picture.jpg")
LARGEST = 300_000
SUBJECT = "Störung: 空 \N{SUN BEHIND CLOUD} on a night that was long enough for two lines of text"
failures = []


class Mailbox:
    """Takes mails, but not for full@."""

    def __init__(self):
        self.taken = []

    async def handle_RCPT(self, server, session, envelope, address, options):
        if address.startswith("full@"):
            return "452 4.2.2 mailbox full"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        self.taken.append((envelope, session.ssl is not None, session.auth_data))
        return "250 taken"


def log_in(server, session, envelope, mechanism, data):
    right = data.login == b"sky" and data.password == "p\u00e4ss w\u00f6rd".encode()
    return AuthResult(success=right, auth_data=data if right else None, handled=right)


def certificate(host):
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(os.path.join(FOLDER, host + ".pem"), os.path.join(FOLDER, host + ".key"))
    return context


mailbox = Mailbox()
LOGIN = {"authenticator": log_in, "auth_required": True}
SERVERS = {
    "plain": {},
    "clear log-in": {**LOGIN, "auth_require_tls": False},
    "starttls": {**LOGIN, "tls_context": certificate("localhost"), "require_starttls": True},
    "tls": {"ssl_context": certificate("localhost"), **LOGIN, "auth_require_tls": False},
    "other host": {"tls_context": certificate("other.example"), "require_starttls": True},
}
ports = {}


def start_servers():
    running = []
    for index, (name, options) in enumerate(SERVERS.items()):
        ports[name] = PORT + index
        controller = Controller(mailbox, hostname="127.0.0.1", port=ports[name],
                                data_size_limit=LARGEST, **options)
        controller.start()
        running.append(controller)
    silent = socket.create_server(("127.0.0.1", PORT + len(SERVERS)))
    ports["silent"] = PORT + len(SERVERS)
    ports["nobody"] = PORT + len(SERVERS) + 1
    return running, silent


def expect(what, condition, seen):
    if not condition:
        failures.append(f"{what}: {seen}")


def send(server, security, user="", password="", ca="", to="one@example.org", picture=PICTURE):
    """What the sender says, and the mails that arrived."""
    mailbox.taken.clear()
    words = ["localhost", str(ports[server]), security, user, password, ca,
             "Sternwarte Süd <sky@example.org>", to, picture, SUBJECT]
    begun = time.monotonic()
    done = subprocess.run(SENDER + words, capture_output=True, timeout=60,
                          env={**os.environ, "QT_QPA_PLATFORM": "offscreen"})
    said = done.stdout.decode(errors="replace").replace("\r", "").strip()
    expect(f"{server} takes its time", UNDER_WINE or time.monotonic() - begun < 8, said)
    return said, list(mailbox.taken)


def check_mail(envelope):
    message = email.message_from_bytes(envelope.content, policy=email.policy.default)
    expect("no defects", not message.defects, message.defects)
    lines = envelope.content.split(b"\r\n")
    expect("lines", max(map(len, lines)) <= 78, max(lines, key=len))
    expect("ASCII", envelope.content.isascii(), "")
    expect("subject", message["Subject"] == SUBJECT, message["Subject"])
    sender = message["From"].addresses[0]
    expect("sender", (sender.display_name, sender.addr_spec) == ("Sternwarte Süd", "sky@example.org"),
           message["From"])
    expect("id", message["Message-ID"].endswith("@example.org>"), message["Message-ID"])
    date = email.utils.parsedate_to_datetime(message["Date"])
    age = datetime.datetime.now(datetime.timezone.utc) - date
    expect("date", abs(age) < datetime.timedelta(minutes=2), message["Date"])
    text, picture = list(message.iter_parts())
    content = text.get_content()
    expect("text", content == "Größe, 空.\r\n.a line with a dot\r\n", repr(content))
    with open(PICTURE, "rb") as file:
        expect("picture", picture.get_content() == file.read(), picture.get_filename())
    expect("picture's kind", picture.get_content_type() == "image/jpeg", picture["Content-Type"])


def check_sent(what, said, mails, by_starttls, logged_in):
    expect(what, said == "sent" and len(mails) == 1, said)
    for envelope, is_secure, user in mails:
        expect(what + " by STARTTLS", is_secure == by_starttls, is_secure)
        expect(what + " log-in", (user is not None) == logged_in, user)
        check_mail(envelope)


def check_refused(what, words, said, mails, under_wine=None):
    """Windows has words of its own for some faults, and Wine no word of some refusals."""
    wanted = words if under_wine is None or not UNDER_WINE else under_wine
    expect(what, wanted in said and not mails, said)


def run():
    user = {"user": "sky", "password": "p\u00e4ss w\u00f6rd"}
    check_sent("plain", *send("plain", "none"), by_starttls=False, logged_in=False)
    check_sent("clear log-in", *send("clear log-in", "none", **user), by_starttls=False, logged_in=True)
    check_sent("starttls", *send("starttls", "starttls", ca=CA, **user), by_starttls=True, logged_in=True)
    check_sent("tls", *send("tls", "tls", ca=CA, **user), by_starttls=False, logged_in=True)
    check_refused("wrong password", "refused the log-in: 535",
                  *send("starttls", "starttls", "sky", "wrong", CA))
    check_refused("no log-in", "530 5.7.0 Authentication required", *send("starttls", "starttls", ca=CA))
    check_refused("other host's certificate", "certificate of the mail server is not accepted",
                  *send("other host", "starttls", ca=CA))
    check_refused("no certificates", "CA file", *send("tls", "tls", ca=PICTURE, **user),
                  under_wine="certificate of the mail server is not accepted")
    if UNDER_WINE:
        print("left out: certificates that the system does not know (Wine takes them)")
    else:
        check_refused("unknown certificate", "certificate of the mail server is not accepted",
                      *send("starttls", "starttls", **user))
        check_refused("unknown certificate", "certificate of the mail server is not accepted",
                      *send("tls", "tls", **user))
    check_refused("must be secure", "530", *send("starttls", "none", **user))
    check_refused("no STARTTLS", "offers no encryption", *send("plain", "starttls", **user))
    check_refused("no TLS", "no encrypted connection", *send("plain", "tls", **user),
                  under_wine="no answer from the mail server")
    check_refused("full", "452 4.2.2 mailbox full", *send("plain", "none", to="full@example.org"))
    said, mails = send("plain", "none", to="full@example.org, two@example.org")
    expect("one full", "452" in said and said.endswith("sent") and
           mails[0][0].rcpt_tos == ["two@example.org"], said)
    large = os.path.join(FOLDER, "large.jpg")
    with open(large, "wb") as file:
        file.write(os.urandom(LARGEST))
    check_refused("too large", "552", *send("plain", "none", picture=large))
    check_refused("silent", "no answer from the mail server", *send("silent", "none"))
    check_refused("nobody", "no connection to the mail server", *send("nobody", "none"),
                  under_wine="no answer from the mail server")


with open(PICTURE, "wb") as picture_file:
    picture_file.write(b"\xff\xd8" + os.urandom(40_000) + b"\xff\xd9")
controllers, silent_server = start_servers()
try:
    run()
finally:
    for each in controllers:
        each.stop()
    silent_server.close()
print("\n".join(failures) or "mail trial: every mail arrived as it was meant, or was refused")
sys.exit(bool(failures))
