#!/usr/bin/env python3
"""Load on `refdoc serve`, on loopback only, with figures and no verdict.

Starts the tool's server on a free port of 127.0.0.1 under a time limit, on a generated large
root (the benchmark's corpus generator writes it into a temporary folder, removed afterwards)
or on the root given, and measures:
  1. the first search (the load) and a search alone (median of 5);
  2. a search while 8 idle keep-alive connections are open;
  3. 50 searches sent at once: when the last one answers;
  4. searches sent while the first request in another language loads that language;
  5. searches sent while a /problems request of a changed root is being answered.
Every request has a time limit; the server is stopped at the end whatever happened.

  scripts/serve-load.py [--tool build/debug/tools/refdoc/refdoc] [--root DIR]
                        [--corpus-tool build/debug/bench/refdoc_corpus] [--products 40]
"""

import argparse
import http.client
import os
import re
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

REQUEST_TIMEOUT = 300  # seconds; a request that takes longer counts as failed
SERVER_LIMIT = 1800  # the server stops itself after this many seconds, whatever the script does


def get(port, path, connection=None):
    """(status, seconds) of one GET; status None when it failed or timed out."""
    own = connection is None
    if own:
        connection = http.client.HTTPConnection("127.0.0.1", port, timeout=REQUEST_TIMEOUT)
    start = time.monotonic()
    try:
        connection.request("GET", path)
        response = connection.getresponse()
        response.read()
        status = response.status
    except (OSError, http.client.HTTPException):
        status = None
    elapsed = time.monotonic() - start
    if own:
        connection.close()
    return status, elapsed


def parallel(port, paths):
    """Sends every path at once, each on its own connection; [(status, seconds)] and the wall time."""
    results = [None] * len(paths)
    barrier = threading.Barrier(len(paths))

    def one(i):
        barrier.wait()
        results[i] = get(port, paths[i])

    threads = [threading.Thread(target=one, args=(i,)) for i in range(len(paths))]
    start = time.monotonic()
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return results, time.monotonic() - start


def get_text(port, path):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=REQUEST_TIMEOUT)
    try:
        connection.request("GET", path)
        return connection.getresponse().read().decode("utf-8", "replace")
    finally:
        connection.close()


def run_beside(port, slow_path, path, limit=20):
    """Sends slow_path, and path one after another for as long as it runs: ([(status, seconds)], its answer)."""
    answer = {}
    thread = threading.Thread(target=lambda: answer.setdefault("slow", get(port, slow_path)))
    thread.start()
    time.sleep(0.05)
    beside = []
    while thread.is_alive() and len(beside) < limit:
        beside.append(get(port, path))
    thread.join()
    return beside, answer["slow"]


def ms(seconds):
    return f"{seconds * 1000:.0f} ms"


def start_server(tool, root):
    process = subprocess.Popen(
        ["timeout", str(SERVER_LIMIT), tool, "serve", "--port", "0", "--bind", "127.0.0.1", "--root", root],
        stdout=subprocess.PIPE, text=True)
    for line in process.stdout:
        if "Open http://127.0.0.1:" in line:
            return process, int(line.split("127.0.0.1:")[1].split("/")[0])
    process.wait()
    raise SystemExit("serve-load: the server printed no address")


def touch_one_lookup_file(root):
    folder = os.path.join(root, "docCatalog", "referenceapi_lookup")
    name = sorted(n for n in os.listdir(folder) if n.endswith(".json"))[0]
    os.utime(os.path.join(folder, name))


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", default=os.path.join(here, "..", "build", "debug", "tools", "refdoc", "refdoc"))
    parser.add_argument("--corpus-tool", default=os.path.join(here, "..", "build", "debug", "bench", "refdoc_corpus"))
    parser.add_argument("--root", help="a documentation root (default: a generated one)")
    parser.add_argument("--products", type=int, default=40)
    parser.add_argument("--query", default="ma")
    args = parser.parse_args()

    scratch = None
    root = args.root
    if root is None:
        scratch = tempfile.mkdtemp(prefix="refdoc-serve-load-")
        root = os.path.join(scratch, "root")
        subprocess.run([args.corpus_tool, root, "--products", str(args.products)], check=True,
                       stdout=subprocess.DEVNULL)
        # The server keeps nothing it loaded from files written in the last 2 seconds (they
        # could change again within the timestamps' granularity): let the new root settle.
        time.sleep(2.5)
    server = None
    try:
        server, port = start_server(args.tool, root)
        search = f"/search?q={args.query}"
        failed = 0

        status, first = get(port, search)
        failed += status != 200
        alone = []
        for _ in range(5):
            status, seconds = get(port, search)
            failed += status != 200
            alone.append(seconds)
        print(f"first search (loads the root):            {ms(first)}")
        print(f"search alone, median of 5:                {ms(statistics.median(alone))}")

        idle = []
        for _ in range(8):
            connection = http.client.HTTPConnection("127.0.0.1", port, timeout=REQUEST_TIMEOUT)
            get(port, "/favicon.ico", connection)  # opened, then left idle with keep-alive
            idle.append(connection)
        status, seconds = get(port, search)
        failed += status != 200
        print(f"search with 8 idle keep-alive connections: {ms(seconds)}")
        for connection in idle:
            connection.close()

        results, wall = parallel(port, [search] * 50)
        failed += sum(status != 200 for status, _ in results)
        print(f"50 parallel searches: all answered within {ms(wall)} "
              f"(slowest {ms(max(s for _, s in results))})")

        # The first request in another language loads that language; searches in the loaded
        # one run beside it.
        switch = re.search(r'hreflang="([^"]+)"', get_text(port, "/"))
        other = switch.group(1) if switch else None
        if other is not None:
            beside_load, load_result = run_beside(port, f"{search}&lang={other}", search)
            failed += load_result[0] != 200 or any(status != 200 for status, _ in beside_load)
            print(f"first search in {other} (loads it) took {ms(load_result[1])}; {len(beside_load)} searches in en "
                  f"beside it, slowest {ms(max((s for _, s in beside_load), default=0))}")

        # A changed root makes /problems read every file again; searches run beside it. The
        # server keeps nothing loaded from files changed in the last 2 seconds, so the edit is
        # left to settle and the search loads it once before the measurement.
        touch_one_lookup_file(root)
        time.sleep(2.5)
        get(port, search)
        beside, (status, seconds) = run_beside(port, "/problems", search)
        failed += status != 200 or any(status != 200 for status, _ in beside)
        if beside:
            print(f"/problems took {ms(seconds)}; {len(beside)} searches beside it, "
                  f"slowest {ms(max(s for _, s in beside))}")
        else:
            print(f"/problems took {ms(seconds)}; it ended before a search could be sent beside it")
        print(f"failed requests: {failed}")
        return 1 if failed else 0
    finally:
        if server is not None:
            server.send_signal(signal.SIGTERM)
            try:
                server.wait(timeout=30)
            except subprocess.TimeoutExpired:
                server.kill()
        if scratch is not None:
            shutil.rmtree(scratch, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
