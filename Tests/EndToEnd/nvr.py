"""netserver-nvr and the simulated ONVIF camera for it."""

import os
import subprocess

NVR = os.environ.get("NETSERVER_NVR", "netserver-nvr")
SIMULATOR = os.environ.get("NETSERVER_ONVIF_SIMULATOR", "netserver-onvif-simulator")
DIALECTS = ["Ours", "UsualPrefixes", "SoapPrefix", "UnusualPrefixes", "CapitalNamespaces"]
LIMIT = 60  # seconds; a login in which nothing answers takes 40


class Simulator:
    """A camera with the user admin and the password secret, for the time of `with`."""

    def __init__(self, dialect="Ours", profiles=2):
        self.options = ["--dialect", dialect, "--profiles", str(profiles)]

    def __enter__(self):
        self.process = subprocess.Popen([SIMULATOR, *self.options], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.port = int(self.process.stdout.readline())
        return self

    def __exit__(self, *_):
        self.process.communicate()  # the end of its input ends it

    def login(self):
        return ["--host", "127.0.0.1", "--port", str(self.port), "--user", "admin"]

    def run(self, *command, text_in=None, **options):
        """Runs the tool with the right password. @return exit status, standard output, standard error"""
        return run(*self.login(), *command, text_in=text_in, **options)


def environment(password="secret"):
    variables = dict(os.environ)
    variables.pop("NETSERVER_NVR_PASSWORD", None)
    if password is not None:
        variables["NETSERVER_NVR_PASSWORD"] = password
    return variables


def run(*arguments, text_in=None, password="secret"):
    result = subprocess.run([NVR, *arguments], input=text_in, stdin=None if text_in is not None else subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment(password), text=True,
                            timeout=LIMIT)
    return result.returncode, result.stdout, result.stderr
