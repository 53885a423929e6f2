#!/usr/bin/python3
"""Hostile and heavy HTTP load on the control interface, until a line or the
end of standard input arrives (or MAX_SECONDS pass).

    control_load.py PORT IDLE_CONNECTIONS

Busy clients on keep-alive connections ask in turn for a chamber, the
metrics, a filtered page, set faults on the last chamber and send malformed
JSON, unknown ids and an unknown method. Beside them: half-sent requests, a
body of 100 MB and IDLE_CONNECTIONS idle connections. Prints "ready" once all
of it runs, and at the end one JSON object with what came back.
"""
import collections
import http.client
import json
import socket
import sys
import threading
import time

HOST = "127.0.0.1"
MAX_SECONDS = 120
BUSY_CLIENTS = 4
HALF_SENT = 50
BIG_BODY = 100 * 1024 * 1024
CHUNK = 1024 * 1024

stop = threading.Event()
lock = threading.Lock()
statuses = collections.Counter()
errors = collections.Counter()


def busy(port, last_chamber):
    requests = [("GET", f"/chambers/{last_chamber}", None), ("GET", "/metrics", None),
                ("GET", "/chambers?limit=50&q=KBF", None),
                ("PUT", f"/chambers/{last_chamber}/faults", '{"delayMs": 1}'),
                ("PUT", f"/chambers/{last_chamber}/faults", '{"delayMs": '),
                ("GET", "/chambers/100000", None), ("FOO", "/chambers", None),
                ("DELETE", f"/chambers/{last_chamber}/faults", None)]
    connection = http.client.HTTPConnection(HOST, port, timeout=10)
    turn = 0
    while not stop.is_set():
        method, path, body = requests[turn % len(requests)]
        turn += 1
        try:
            connection.request(method, path, body=body)
            response = connection.getresponse()
            response.read()
            with lock:
                statuses[f"{method} {response.status}"] += 1
        except (OSError, http.client.HTTPException) as error:
            with lock:
                errors[type(error).__name__] += 1
            connection.close()
            connection = http.client.HTTPConnection(HOST, port, timeout=10)


def big_body(port, result):
    client = socket.create_connection((HOST, port), timeout=10)
    client.sendall(f"PUT /chambers/0/faults HTTP/1.1\r\nHost: {HOST}\r\nContent-Length: {BIG_BODY}\r\n\r\n".encode())
    sent = 0
    try:
        while sent < BIG_BODY and not stop.is_set():
            client.sendall(bytes(CHUNK))
            sent += CHUNK
    except OSError:
        pass
    try:
        answer = client.recv(4096)
    except OSError:
        answer = b""
    result["status"] = int(answer.split(b" ")[1]) if answer.startswith(b"HTTP/1.1 ") else 0
    result["sentBytes"] = sent
    client.close()


def main():
    port, idle_count = int(sys.argv[1]), int(sys.argv[2])
    started = time.monotonic()
    connection = http.client.HTTPConnection(HOST, port, timeout=10)
    connection.request("GET", "/chambers?limit=0")
    response = connection.getresponse()
    response.read()
    last_chamber = int(response.getheader("X-Total-Count")) - 1
    connection.close()

    print(f"fleet of {last_chamber + 1} after {time.monotonic() - started:.2f} s", file=sys.stderr, flush=True)
    threads = [threading.Thread(target=busy, args=(port, last_chamber)) for _ in range(BUSY_CLIENTS)]
    big = {}
    threads.append(threading.Thread(target=big_body, args=(port, big)))
    for thread in threads:
        thread.start()
    half_sent = []
    for _ in range(HALF_SENT):
        client = socket.create_connection((HOST, port), timeout=10)
        client.sendall(b"GET /chambers HTTP/1.1\r\nHost: ")
        half_sent.append(client)
    idle = []
    for _ in range(idle_count):
        try:
            idle.append(socket.create_connection((HOST, port), timeout=10))
        except OSError:
            errors["idle connect"] += 1
    print(f"set up in {time.monotonic() - started:.2f} s", file=sys.stderr, flush=True)
    print("ready", flush=True)

    deadline = time.monotonic() + MAX_SECONDS
    waiter = threading.Thread(target=sys.stdin.readline, daemon=True)
    waiter.start()
    waiter.join(max(0, deadline - time.monotonic()))
    stop.set()
    for thread in threads:
        thread.join()

    closed = 0
    for client in idle:
        client.setblocking(False)
        try:
            closed += client.recv(1) == b""
        except BlockingIOError:
            pass
        except OSError:
            closed += 1
        client.close()
    for client in half_sent:
        client.close()
    print(json.dumps({"statuses": dict(statuses), "errors": dict(errors), "bigBody": big,
                      "idleOpened": len(idle), "idleClosedByServer": closed}), flush=True)


if __name__ == "__main__":
    main()
