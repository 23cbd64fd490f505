// What a hook command does at least, as a script for Node: the peer that bench/hook.py measures `brindle hook` against.
// It takes no lock and looks for no agent.
import { randomUUID } from "node:crypto";
import { appendFileSync, mkdirSync, readFileSync } from "node:fs";

const payload = JSON.parse(readFileSync(0, "utf8"));
if (payload.hook_event_name === "Stop") {
  const event = {
    id: randomUUID().toUpperCase(), time: new Date().toISOString(), agent: "Claude Code", kind: "finished",
    cwd: payload.cwd, pid: process.ppid, sessionID: payload.session_id,
  };
  mkdirSync(process.env.BRINDLE_DATA_DIR, { recursive: true, mode: 0o700 });
  appendFileSync(`${process.env.BRINDLE_DATA_DIR}/peer-events.jsonl`, JSON.stringify(event) + "\n", { mode: 0o600 });
}
