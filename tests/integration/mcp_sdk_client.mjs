// A real client of `brindle mcp`: the protocol's own TypeScript SDK. Prints one line and ends with 0 when everything
// that a client does worked.
//
// Usage: node mcp_sdk_client.mjs SDK_FOLDER COMMAND [ARGUMENT …]
// CLIENT_NAME is what it says it is; REPLIES, "framed" or "bare", is how it must be answered.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

const [folder, command, ...args] = process.argv.slice(2);
const sdk = join(folder, "node_modules/@modelcontextprotocol/sdk");
const load = (path) => import(pathToFileURL(join(sdk, "dist/esm/client", path)).href);
const { Client } = await load("index.js");
const { StdioClientTransport } = await load("stdio.js");
const { version } = JSON.parse(readFileSync(join(sdk, "package.json"), "utf8"));

const failures = [];
const transport = new StdioClientTransport({ command, args, env: process.env, stderr: "inherit" });
const client = new Client({ name: process.env.CLIENT_NAME ?? "brindle-test", version: "1.0.0" }, { capabilities: {} });
// Bytes that the SDK cannot read show up here; a header before a reply is one such piece to some versions.
client.onerror = (error) => failures.push(error.message);

const began = process.hrtime.bigint();
await client.connect(transport, { timeout: 10000 });
const connected = Number(process.hrtime.bigint() - began) / 1e6;

assert.deepEqual(client.getServerVersion(), { name: "brindle", version: "1.3.0" });
assert.ok(client.getServerCapabilities().tools);
await client.ping();
const { tools } = await client.listTools();
assert.deepEqual(tools.map((tool) => tool.name), ["status", "ports", "agents", "safety", "request_quit"]);

const call = async (name, values = {}) => {
  const result = await client.callTool({ name, arguments: values });
  assert.equal(result.content.length, 1);
  return { text: result.content[0].text, isError: result.isError };
};
for (const name of ["status", "ports", "agents"]) {
  const { text, isError } = await call(name);
  assert.equal(isError, false);
  assert.equal(JSON.parse(text).command, name);
}
assert.equal(JSON.parse((await call("safety", { pid: 600 })).text).verdict, "askFirst");
const [refused, filed] = [await call("request_quit", { pid: 700 }), await call("request_quit", { pid: 600 })];
assert.equal(refused.isError, false);
assert.equal(JSON.parse(refused.text).accepted, false);
assert.equal(JSON.parse(filed.text).accepted, true);
assert.match(JSON.parse(filed.text).requestId, /^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$/);

// Bad arguments are errors of the tool, and the next call works.
const nothingSaid = { text: "Say which pid, port or sessionPid.", isError: true };
for (const values of [{}, { pid: "600" }, { pid: true }, { port: null }, { sessionPid: 2 ** 31 }, { process: 600 }]) {
  assert.deepEqual(await call("safety", values), nothingSaid, JSON.stringify(values));
  assert.deepEqual(await call("request_quit", values), nothingSaid, JSON.stringify(values));
}
assert.deepEqual(await call("kill", { pid: 600 }), { text: "Unknown tool.", isError: true });
// Many requests at once: replies must come back under their own ids.
const verdicts = await Promise.all(Array.from({ length: 50 }, (_, i) => call("safety", { pid: i % 2 ? 600 : 99999 })));
verdicts.forEach(({ text }, i) => assert.equal(JSON.parse(text).verdict, i % 2 ? "askFirst" : "leaveAlone"));
await assert.rejects(client.listResources(), (error) => error.code === -32601 && /Method not found/.test(error.message));
await client.close();
// A header before a reply is a piece that this client cannot read and passes over.
if (process.env.REPLIES === "bare") assert.deepEqual(failures, []);
if (process.env.REPLIES === "framed") assert.notEqual(failures.length, 0);

const notes = failures.length ? `; ${failures.length} pieces skipped by the client` : "";
console.log(`sdk ${version}: ok, connected in ${connected.toFixed(1)} ms${notes}`);
