"""The tools of `brindle mcp` beside the reports of the same machine."""

import json
import sys

from machine_case import NOBODY, MachineCase, main
from process_case import wait_until


class LiveTools(MachineCase):
    def setUp(self):
        super().setUp()
        serve = f"{sys.executable} -m http.server --bind 127.0.0.1"
        agent = self.script("agent.sh", f"""
            {serve} 4100 & echo $! > {self.folder}/server
            echo $$ > {self.folder}/agent
            wait
        """)
        self.machine(f"""
            {self.stand_in("claude")} {agent} &
            setpriv --reuid={NOBODY} --regid={NOBODY} --clear-groups {serve} 4200 & echo $! > {self.folder}/others
            bash -c 'exec -a postgres sleep 1000' & echo $! > {self.folder}/database
        """)
        self.wait_listening(2)
        self.server, self.agent, self.others, self.database = (
            self.pid_from(name) for name in ("server", "agent", "others", "database"))
        wait_until(lambda: "postgres" in self.inside("ps", "-o", "args=", "-p", self.database).stdout, "the database")

    def ask(self, *questions):
        """The texts of the results of tools, each asked for by its name and arguments."""
        calls = [{"jsonrpc": "2.0", "id": at, "method": "tools/call", "params": {"name": name, "arguments": arguments}}
                 for at, (name, arguments) in enumerate(questions)]
        answered = self.inside(self.program, "mcp", "--framing=lines", typed="".join(json.dumps(each) + "\n" for each in calls))
        replies = {reply["id"]: reply["result"] for reply in map(json.loads, answered.stdout.splitlines())}
        self.assertEqual([replies[at]["isError"] for at in range(len(calls))], [False] * len(calls), answered.stderr)
        return [json.loads(replies[at]["content"][0]["text"]) for at in range(len(calls))]

    def without_what_moves(self, value):
        if isinstance(value, list):
            return [self.without_what_moves(each) for each in value]
        if isinstance(value, dict):
            moving = ("uptimeSeconds", "memoryBytes", "activity", "summary")
            return {key: self.without_what_moves(each) for key, each in value.items() if key not in moving}
        return value

    def test_they_tell_what_the_reports_tell(self):
        names = ("status", "ports", "agents")
        for name, told in zip(names, self.ask(*((name, {}) for name in names))):
            self.assertEqual(self.without_what_moves(told), self.without_what_moves(self.document_inside(name)))
            self.assertEqual(told["command"], name)

    def test_the_safety_of_what_runs_now(self):
        gone = self.server + 100_000
        targets = ({"pid": self.server}, {"port": 4100}, {"sessionPid": self.agent}, {"pid": self.agent}, {"pid": self.others},
                   {"port": 4200}, {"pid": self.database}, {"pid": gone}, {"port": 4300}, {"pid": 1})
        verdicts = [each["verdict"] + ": " + each["reason"] for each in self.ask(*(("safety", target) for target in targets))]
        ask = "askFirst: Brindle will ask you in the app before it stops anything."
        session = "askFirst: This is a live agent session. Brindle will ask you before quitting it and everything it started."
        nothing = "leaveAlone: Nothing of yours matches."
        self.assertEqual(verdicts, [
            ask, ask, session, session, "leaveAlone: Owned by another user.", "leaveAlone: Owned by another user.",
            "leaveAlone: Protected by default: Databases. Brindle will not stop it.", nothing, nothing,
            "leaveAlone: System process. Brindle leaves it alone."])


if __name__ == "__main__":
    main("__main__")
