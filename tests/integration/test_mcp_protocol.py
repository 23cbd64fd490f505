"""`brindle mcp` as its clients meet it: framings, limits, manners."""
import os
import socket
import subprocess
import unittest

from mcp_client import BRINDLE, Client, recorded

PARSE_ERROR = {"jsonrpc": "2.0", "error": {"code": -32700, "message": "Parse error"}}
COMPLAINT = {"jsonrpc": "2.0", "error": {"code": -32700, "message": "Parse error"}}


def ping(id):
    return {"jsonrpc": "2.0", "id": id, "method": "ping"}


def pong(id):
    return {"jsonrpc": "2.0", "id": id, "result": {}}


def initialize(name, version="1.0"):
    return {"jsonrpc": "2.0", "id": 0, "method": "initialize",
            "params": {"protocolVersion": "2025-06-18", "capabilities": {},
                       "clientInfo": {"name": name, "version": version}}}


class Framings(unittest.TestCase):
    def test_framed_requests_get_frames_with_nothing_behind_them(self):
        for option in ("auto", "lines", "header"):
            with self.subTest(option), Client("--framing=" + option) as client:
                for id in (1, 2):
                    client.send_frame(ping(id))
                    self.assertEqual(client.read_frame(), pong(id))
                self.assertEqual(client.finish(), (0, b"", ""))

    def test_auto_and_header_answer_lines_with_a_frame_and_a_line_feed(self):
        for options in ((), ("--framing=auto",), ("--framing", "header")):
            with self.subTest(options), Client(*options) as client:
                client.send_line(initialize("claude-code"))
                self.assertEqual(client.read_framed_line()["result"]["protocolVersion"], "2024-11-05")
                client.send_line(ping("a"))
                self.assertEqual(client.read_framed_line(), pong("a"))
                self.assertEqual(client.finish(), (0, b"", ""))

    def test_lines_answers_lines_bare(self):
        with Client("--framing=lines") as client:
            client.send_line(ping(0))
            self.assertEqual(client.read_line(), pong(0))
            self.assertEqual(client.finish(), (0, b"", ""))

    def test_the_variable_chooses_and_the_option_beats_it(self):
        with Client(environment={"BRINDLE_MCP_FRAMING": "lines"}) as client:
            client.send_line(ping(1))
            self.assertEqual(client.read_line(), pong(1))
        with Client("--framing=header", environment={"BRINDLE_MCP_FRAMING": "lines"}) as client:
            client.send_line(ping(1))
            self.assertEqual(client.read_framed_line(), pong(1))

    def test_a_variable_that_means_nothing_is_remarked_and_auto_taken(self):
        with Client(environment={"BRINDLE_MCP_FRAMING": "line"}) as client:
            client.send_line(ping(1))
            self.assertEqual(client.read_framed_line(), pong(1))
            status, rest, remarks = client.finish()
            self.assertEqual((status, rest), (0, b""))
            self.assertIn('expected auto, lines or header, got "line"', remarks)

    def test_auto_turns_to_lines_before_the_first_reply_to_a_client_that_needs_them(self):
        for name, version in (("cursor-vscode", "3.1"), ("Antigravity", "1"), ("codex-mcp-client", "0.121.0")):
            with self.subTest(name), Client() as client:
                client.send_line(initialize(name, version))
                self.assertEqual(client.read_line()["id"], 0)
                client.send_line(ping(1))
                self.assertEqual(client.read_line(), pong(1))

    def test_auto_turns_to_lines_when_the_client_complains(self):
        with Client() as client:
            client.send_line(ping(1))
            self.assertEqual(client.read_framed_line(), pong(1))
            client.send_line(COMPLAINT)
            client.send_line(ping(2))
            self.assertEqual(client.read_line(), pong(2))

    def test_replies_are_never_answered(self):
        with Client() as client:
            for message in (COMPLAINT, {"jsonrpc": "2.0", "id": 9, "result": {}},
                            {"jsonrpc": "2.0", "id": 9, "error": {"code": 1, "message": "x"}}):
                client.send_frame(message)
            self.assertTrue(client.quiet())

    def test_notifications_are_never_answered(self):
        with Client() as client:
            client.send_frame({"jsonrpc": "2.0", "method": "notifications/initialized"})
            client.send_frame({"jsonrpc": "2.0", "method": "notifications/cancelled", "params": {"requestId": 1}})
            self.assertTrue(client.quiet())


class Input(unittest.TestCase):
    def test_messages_may_come_byte_by_byte(self):
        with Client() as client:
            for byte in b'{"id":1,"method":"ping"}\r\nContent-Length: 24\r\n\r\n{"id":2,"method":"ping"}':
                client.send(bytes([byte]))
            self.assertEqual(client.read_framed_line(), pong(1))
            self.assertEqual(client.read_frame(), pong(2))

    def test_several_messages_may_come_in_one_write(self):
        with Client("--framing=lines") as client:
            client.send(b"".join(b'{"id":%d,"method":"ping"}\n' % id for id in range(500)))
            self.assertEqual([client.read_line()["id"] for _ in range(500)], list(range(500)))

    def test_blank_lines_are_skipped(self):
        with Client() as client:
            client.send(b'\n\r\n  \n{"id":1,"method":"ping"}\n\n\r\n')
            self.assertEqual(client.read_framed_line(), pong(1))
            self.assertTrue(client.quiet())

    def test_initialize_is_not_demanded_first_and_unknown_methods_are_answered(self):
        with Client() as client:
            for method in ("server/discover", "resources/list", "resources/templates/list", "prompts/list"):
                self.assertEqual(client.ask(method)["error"]["code"], -32601)
            self.assertEqual(len(client.ask("tools/list")["result"]["tools"]), 5)

    def test_a_line_that_is_no_json_is_a_parse_error(self):
        with Client("--framing=lines") as client:
            client.send(b"{broken\n")
            self.assertEqual(client.read_line(), PARSE_ERROR)
            client.send_line(ping(1))
            self.assertEqual(client.read_line(), pong(1))

    def test_a_line_over_the_limit_is_one_parse_error_and_the_next_is_read(self):
        with Client("--framing=lines") as client:
            client.send(b'{"x":"' + b"y" * (3 << 20) + b'"}\n')
            client.send_line(ping(1))
            self.assertEqual(client.read_line(), PARSE_ERROR)
            self.assertEqual(client.read_line(), pong(1))

    def test_a_message_of_one_mebibyte_is_read(self):
        filler = (1 << 20) - len(b'{"id":1,"method":"ping","x":""}')
        with Client("--framing=lines") as client:
            client.send(b'{"id":1,"method":"ping","x":"' + b"y" * filler + b'"}\n')
            self.assertEqual(client.read_line(), pong(1))

    def test_a_frame_over_the_limit_is_a_parse_error_and_the_end(self):
        with Client() as client:
            client.send(b"Content-Length: %d\r\n\r\n" % ((1 << 20) + 1))
            self.assertEqual(client.read_frame(), PARSE_ERROR)
            self.assertEqual(client.more(), b"")
            self.assertEqual(client.process.wait(10), 0)

    def test_an_endless_header_is_a_parse_error_and_the_end(self):
        with Client() as client:
            client.send(b"X" * 9000)
            self.assertEqual(client.read_frame(), PARSE_ERROR)
            self.assertEqual(client.process.wait(10), 0)

    def test_a_reply_over_the_limit_is_replaced_by_one_that_says_so(self):
        with Client() as client:
            reply = client.ask("ping", id="x" * (300 << 10))
            self.assertEqual(reply, {"jsonrpc": "2.0", "error": {"code": -32600, "message": "The id is too long"}})
            self.assertTrue(client.quiet())


class Manners(unittest.TestCase):
    def test_the_end_of_the_input_is_the_end_with_status_0(self):
        with Client() as client:
            self.assertEqual(client.finish(), (0, b"", ""))

    def test_half_a_message_at_the_end_of_the_input_is_the_end_too(self):
        with Client() as client:
            client.send(b'{"id":1')
            self.assertEqual(client.finish(), (0, b"", ""))

    def test_a_reader_that_has_gone_is_the_end_with_status_0(self):
        with Client() as client:
            client.process.stdout.close()
            client.send_frame(ping(1))
            self.assertEqual(client.process.wait(10), 0)
            self.assertEqual(client.process.stderr.read(), b"")

    @unittest.skipUnless(os.path.isdir("/proc/self/fd"), "skipped: needs /proc")
    def test_descriptor_1_points_at_standard_error(self):
        with Client() as client:
            client.ask("ping")
            folder = f"/proc/{client.process.pid}/fd/"
            self.assertEqual(os.readlink(folder + "1"), os.readlink(folder + "2"))

    def test_starting_alone_has_no_side_effects(self):
        with Client() as client:
            client.send_line(initialize("probe"))
            client.read_framed_line()
            client.finish()
            self.assertFalse(os.path.exists(client.state))

    def test_descriptors_that_do_not_block_are_served(self):
        ours, theirs = socket.socketpair()
        theirs.setblocking(False)
        with ours, subprocess.Popen([BRINDLE, "mcp", *recorded()], stdin=theirs, stdout=theirs) as process:
            theirs.close()
            ours.settimeout(10)
            for id in range(3):
                ours.sendall(b'{"id":%d,"method":"tools/list"}\n' % id)
                received = b""
                while not received.endswith(b"}\n"):
                    received += ours.recv(65536)
            ours.shutdown(socket.SHUT_WR)
            self.assertEqual(process.wait(10), 0)

    def test_wrong_options_are_one_line_and_status_2(self):
        for options, text in ((["--framing=both"], "both"), (["--now", "5"], "--now goes with --snapshot only"),
                              (["--snapshot", "/nonexistent"], "/nonexistent"),
                              ([*recorded(), "--now", "soon"], "expected seconds since 1970"),
                              ([*recorded(), "--uid", "-1"], "expected a user id"),
                              (["--snapshot", "/dev/null"], "/dev/null")):
            with self.subTest(options):
                done = subprocess.run([BRINDLE, "mcp", *options], stdin=subprocess.DEVNULL, capture_output=True,
                                      text=True, timeout=10)
                self.assertEqual((done.returncode, done.stdout), (2, ""))
                self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
                self.assertIn(text, done.stderr)


if __name__ == "__main__":
    unittest.main()
