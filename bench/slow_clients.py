#!/usr/bin/python3
"""Slow clients for scripts/serve-bench: N connections to HOST:PORT, each
sending the start of a request and then one byte of a header line a second,
never finishing it. A connection that the server closes (it refuses a request
that does not arrive in time) is opened again, so that N are always
trickling. Runs until killed; prints how many connections were refused.

Usage: slow_clients.py HOST PORT N
"""
import signal
import socket
import sys
import time


def connect(host, port):
    s = socket.create_connection((host, port))
    s.setblocking(False)
    s.send(f"GET /api/stats HTTP/1.1\r\nHost: {host}:{port}\r\nX-Slow: ".encode())
    return s


def main():
    host, port, n = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    refused = 0

    def report(*_):
        print(f"slow clients: {n} trickling, {refused} refused and opened again", flush=True)
        sys.exit(0)

    signal.signal(signal.SIGTERM, report)
    clients = [connect(host, port) for _ in range(n)]
    while True:
        time.sleep(1)
        for i, s in enumerate(clients):
            try:
                s.send(b"x")
            except OSError:
                s.close()
                refused += 1
                clients[i] = connect(host, port)


if __name__ == "__main__":
    main()
