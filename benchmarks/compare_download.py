#!/usr/bin/env python3
"""Downloads a file over loopback from nginx to disk, in turn by our client and by curl.

Prints a Markdown table: throughput of both and their ratio, memory above the idle process, and the
longest stall of the event loop. Needs nginx and curl, and free disk space of twice the size.

Usage: compare_download.py BENCH_DOWNLOAD [--mib 1024] [--rounds 5] [--folder /tmp]
"""

import argparse
import json
import pathlib
import shutil
import socket
import statistics
import subprocess
import tempfile
import time

NGINX = """
daemon off; master_process off; user root; pid {folder}/pid; error_log stderr;
events {{ }}
http {{
  access_log off; sendfile on;
  client_body_temp_path {folder}/t1; proxy_temp_path {folder}/t2; fastcgi_temp_path {folder}/t3;
  uwsgi_temp_path {folder}/t4; scgi_temp_path {folder}/t5;
  server {{ listen 127.0.0.1:{port}; root {folder}; }}
}}
"""


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def start_nginx(folder, port):
    configuration = folder / "nginx.conf"
    configuration.write_text(NGINX.format(folder=folder, port=port))
    program = shutil.which("nginx", path="/usr/sbin:/usr/bin:/usr/local/sbin")
    process = subprocess.Popen([program, "-c", configuration], stderr=subprocess.DEVNULL)
    for _ in range(100):
        with socket.socket() as probe:
            if probe.connect_ex(("127.0.0.1", port)) == 0:
                return process
        time.sleep(0.1)
    raise SystemExit("nginx does not start")


def make_file(path, mib):
    block = bytes(range(256)) * 4096
    with open(path, "wb") as file:
        for _ in range(mib):
            file.write(block)


def by_client(program, url, target):
    output = subprocess.run([program, url, target], check=True, capture_output=True, text=True)
    return json.loads(output.stdout)


def by_curl(url, target):
    command = ["curl", "--silent", "--fail", "--noproxy", "*", "--output", target,
               "--write-out", "%{time_total}", url]
    output = subprocess.run(command, check=True, capture_output=True, text=True)
    return {"seconds": float(output.stdout)}


def measure(arguments, folder):
    port = free_port()
    nginx = start_nginx(folder, port)
    try:
        make_file(folder / "file", arguments.mib)
        url, target = f"http://127.0.0.1:{port}/file", folder / "target"
        rounds = []
        for number in range(arguments.rounds + 1):
            # The first round warms the caches and does not count; nobody always goes first.
            pair = {}
            for name in ("client", "curl") if number % 2 else ("curl", "client"):
                target.unlink(missing_ok=True)
                subprocess.run(["sync"], check=True)
                pair[name] = (by_client(arguments.program, url, target) if name == "client"
                              else by_curl(url, target))
            if pair["client"]["bytes"] != arguments.mib << 20:
                raise SystemExit(f"only {pair['client']['bytes']} bytes arrived")
            rounds.append(pair)
        return rounds[1:]
    finally:
        nginx.kill()
        nginx.wait()


def print_table(rounds, mib):
    print("| Round | Client, MiB/s | curl, MiB/s | Ratio | Memory above idle, MiB "
          "| Longest stall, ms | Idle loop, ms |")
    print("|---|---|---|---|---|---|---|")
    rows = []
    for pair in rounds:
        client, curl = pair["client"], pair["curl"]
        rows.append((mib / client["seconds"], mib / curl["seconds"],
                     curl["seconds"] / client["seconds"], client["memory_kib"] / 1024,
                     client["stall_ms"], client["idle_stall_ms"]))
    rows_named = [(str(number + 1), row) for number, row in enumerate(rows)]
    median = tuple(statistics.median(column) for column in zip(*rows))
    for name, row in rows_named + [("median", median)]:
        print("| {} | {:.0f} | {:.0f} | {:.2f} | {:.1f} | {:.1f} | {:.1f} |".format(name, *row))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", help="path of the built bench_download")
    parser.add_argument("--mib", type=int, default=1024, help="size of the file")
    parser.add_argument("--rounds", type=int, default=5, help="downloads of each")
    parser.add_argument("--folder", help="where to write; default: the temporary folder")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(dir=arguments.folder) as folder:
        print_table(measure(arguments, pathlib.Path(folder)), arguments.mib)


if __name__ == "__main__":
    main()
