"""What the rounds share: programs that tell events, the pen, the air, and what a user may take away.

All of them wait for what must happen, never for time to pass."""
import json
import os
import signal
import subprocess
import sys
import threading
import time

PATIENCE = 60  # seconds until what has not happened counts as not happening


class Failure(Exception):
    pass


def until(what, condition, patience=PATIENCE):
    end = time.monotonic() + patience
    while not (value := condition()):
        if time.monotonic() > end:
            raise Failure("waited %d s for %s" % (patience, what))
        time.sleep(0.02)
    return value


class Events:
    """What is told in JSON objects, one a line, each with the time at which it was read."""

    def __init__(self):
        self.events = []  # (time, event)

    def follow(self, lines, event=json.loads):
        def read():
            for line in lines:
                self.events.append((time.monotonic(), event(line)))

        threading.Thread(target=read, daemon=True).start()

    def mark(self):
        """To look from here on."""
        return len(self.events)

    def find(self, mark, name, /, **fields):
        """The time of the first such event from the mark on."""
        for at, event in self.events[mark:]:
            if event["event"] == name and fields.items() <= event.items():
                return at
        return None

    def wait(self, mark, name, /, **fields):
        return until("%s %s" % (name, fields or ""), lambda: self.find(mark, name, **fields))

    def wait_past(self, mark, name):
        """Where to look from for what comes after the first such event."""
        return until(name, lambda: next(
            (place for place, (_, event) in enumerate(self.events[mark:], mark + 1)
             if event["event"] == name), None))

    def all(self, mark, name):
        return [event for _, event in self.events[mark:] if event["event"] == name]

    def shown(self, mark=0):
        return "".join("%.3f %s\n" % (at, json.dumps(event)) for at, event in self.events[mark:])


def give_up(failure, **told):
    """Ends the round, with the latest of what was told."""
    for name, events in told.items():
        print("--- the %s:\n%s" % (name, events.shown(max(0, events.mark() - 50))), end="")
    sys.exit("FAILED at %.3f: %s" % (time.monotonic(), failure))


class Program(Events):
    """A process that tells events, and takes commands, a line each."""

    def __init__(self, *command, event=json.loads):
        super().__init__()
        self.command, self.event = command, event
        self.start()

    def start(self):
        self.process = subprocess.Popen(self.command, stdin=subprocess.PIPE, text=True, bufsize=1,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.follow(self.process.stdout, self.event)
        self.follow(self.process.stderr, lambda line: {"event": "said", "text": line.strip()})

    def find(self, mark, name, /, **fields):
        if (status := self.process.poll()) is not None:
            raise Failure("%s has ended with %d" % (" ".join(self.command), status))
        return super().find(mark, name, **fields)

    def tell(self, command):
        try:
            self.process.stdin.write(command + "\n")
        except OSError as error:
            raise Failure("%s has ended: %s" % (" ".join(self.command), error))

    def kill(self):
        self.process.kill()
        self.process.wait()

    def end(self):
        self.process.send_signal(signal.SIGINT)
        try:
            status = self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            raise Failure("%s does not end" % " ".join(self.command))
        if status:
            raise Failure("%s ended with %d" % (" ".join(self.command), status))


class Pen(Program):
    """`inkora pen` on the second controller."""

    def __init__(self, inkora, *options):
        super().__init__(inkora, "pen", "--adapter", "hci1", "--json", *options)
        self.wait(0, "advertising")

    def capture(self, colour):
        mark = self.mark()
        self.tell(colour)
        self.wait(mark, "captured", hex=colour)

    def is_subscribed(self):
        """Whether the host of the link has asked for colours."""
        states = [event["event"] for _, event in self.events
                  if event["event"] in ("connected", "disconnected") or
                  event["event"] in ("subscribed", "unsubscribed") and event["characteristic"] == "colour"]
        return states[-1:] == ["subscribed"]


class Air(Events):
    """What is between the controllers; tools/lab/README.md has its commands."""

    def __init__(self):
        super().__init__()
        self.follow(self.lines("/run/lab/air.log"))

    @staticmethod
    def lines(path):
        """Those of a file that grows."""
        with open(path) as file:
            line = ""
            while True:
                line += file.readline()
                if line.endswith("\n"):
                    yield line
                    line = ""
                else:
                    time.sleep(0.01)

    @staticmethod
    def tell(command):
        with open("/run/air", "w") as fifo:
            fifo.write(command + "\n")

    def shows(self, event, state):
        return [found["is"] for found in self.all(0, event)][-1:] == [state]

    def wait_closed(self, mark, reason=None):
        """The time at which a link closed."""
        def closed():
            return next((at for at, event in self.events[mark:] if event["event"] == "link" and
                         event["is"] != "open" and reason in (None, event["is"])), None)

        return until("the end of the link", closed)


class Adapter:
    """A controller, as bluetoothd has it."""

    def __init__(self, name):
        self.path = "/org/bluez/" + name

    def ask(self, method, *arguments):
        """What `dbus-send` prints of the answer."""
        command = ["dbus-send", "--system", "--print-reply=literal", "--dest=org.bluez", self.path,
                   "org.freedesktop.DBus.Properties." + method, "string:org.bluez.Adapter1", *arguments]
        return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE).stdout

    def power(self, on):
        self.ask("Set", "string:Powered", "variant:boolean:" + str(on).lower())

    def address(self):
        return self.ask("Get", "string:Address").split()[-1]

    def is_known(self):
        try:
            return self.ask("GetAll") != ""
        except subprocess.CalledProcessError:
            return False


class Daemon:
    """bluetoothd, which serves both ends."""

    @staticmethod
    def is_alive():
        with open("/run/bluetoothd.pid") as file:
            pid = file.read().strip()
        try:
            with open("/proc/%s/stat" % pid) as file:
                return " Z " not in file.read()
        except OSError:
            return False

    @staticmethod
    def kill():
        with open("/run/bluetoothd.pid") as file:
            os.kill(int(file.read()), signal.SIGKILL)
        until("the end of bluetoothd", lambda: not Daemon.is_alive())

    @staticmethod
    def start():
        subprocess.run(["/run/start-bluetoothd"], check=True)
