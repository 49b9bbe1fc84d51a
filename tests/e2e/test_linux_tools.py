"""The owners of the caches as judges: what may move is taken away, and the tool does its work again."""

import functools
import hashlib
import http.server
import io
import json
import os
import shutil
import subprocess
import threading
import unittest
import zipfile
from pathlib import Path

from linux_home import LinuxCase, fill, set_back

CARGO_MANIFEST = '[package]\nname = "{}"\nversion = "1.0.0"\nedition = "2021"\n{}'


def real_tool(name):
    """A tool on the path; the one itself where a switch between versions stands in for it."""
    found = shutil.which(name)
    if found and Path(found).resolve().name == "rustup":
        asked = subprocess.run([Path(found).resolve(), "which", name], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                               text=True)
        return asked.stdout.strip() if asked.returncode == 0 else None
    return found


class QuietHandler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_arguments):
        pass


class Tools(LinuxCase):
    def setUp(self):
        super().setUp()
        self.work = self.home / "work"
        self.work.mkdir()

    def tool(self, name):
        """Where it is; without it, the test is skipped."""
        return real_tool(name) or self.skipTest(f"there is no {name}")

    def write(self, name, text):
        path = self.work / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return path

    def serve(self, folder):
        """Offers the files of a folder to this machine; the server and its address."""
        (self.work / folder).mkdir()
        handler = functools.partial(QuietHandler, directory=self.work / folder)
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        threading.Thread(target=server.serve_forever).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return server, f"http://127.0.0.1:{server.server_port}"

    def run_tool(self, *command, cwd=".", **environment):
        """Without any setting of the person who runs the tests. What it printed."""
        path = os.pathsep.join([str(Path(command[0]).parent), os.environ["PATH"]])
        result = subprocess.run(command, cwd=self.work / cwd, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, timeout=300,
                                env={"PATH": path, "HOME": str(self.home), "LANG": "C.UTF-8", **environment})
        self.assertEqual(result.returncode, 0, (result.stdout + result.stderr).decode(errors="replace"))
        return result.stdout.decode(errors="replace")

    def take_away_what_may_move(self, guide, *paths):
        """Makes everything old and removes what may move, as somebody does who empties the Trash too. The entry of the
        guide is to have found the cache."""
        installer = self.home / "Downloads/old.deb"
        fill(installer, 6 * 1024)
        set_back(self.home, 400)
        report = self.report()
        self.assert_measured(report, guide, [self.home / path for path in paths])
        for path in self.movable(report):
            os.unlink(path)
        self.assertFalse(installer.exists())

    def test_npm_installs_again_without_a_network(self):
        npm = self.tool("npm")
        self.write("tiny/package.json", '{"name": "tiny", "version": "1.0.0", "main": "index.js"}')
        self.write("tiny/index.js", "module.exports = 7;\n")
        self.run_tool(npm, "pack", "--offline", cwd="tiny")
        shelf, address = self.serve("shelf")
        package = (self.work / "tiny/tiny-1.0.0.tgz").read_bytes()
        self.write("shelf/tiny.tgz", package)
        self.write("shelf/tiny", json.dumps({"name": "tiny", "dist-tags": {"latest": "1.0.0"}, "versions": {"1.0.0": {
            "name": "tiny", "version": "1.0.0", "main": "index.js",
            "dist": {"tarball": f"{address}/tiny.tgz", "shasum": hashlib.sha1(package).hexdigest()}}}}))

        def install(*options):
            shutil.rmtree(self.work / "app", ignore_errors=True)
            self.write("app/package.json", '{"name": "app", "version": "1.0.0", "dependencies": {"tiny": "^1.0.0"}}')
            self.run_tool(npm, "install", "--no-audit", "--no-fund", f"--registry={address}", *options, cwd="app")
            self.assertTrue((self.work / "app/node_modules/tiny/index.js").exists())

        install()
        shelf.shutdown()
        self.take_away_what_may_move("npm", ".npm/_cacache")
        install("--offline")
        self.assertIn("Content verified", self.run_tool(npm, "cache", "verify"))

    def test_cargo_builds_again_without_a_network(self):
        cargo = self.tool("cargo")
        self.write("tiny/Cargo.toml", CARGO_MANIFEST.format("tiny", 'license = "MIT"\ndescription = "tiny"\n'))
        self.write("tiny/src/lib.rs", "pub fn seven() -> i32 { 7 }\n")
        self.run_tool(cargo, "package", "--offline", "--no-verify", "--allow-dirty", cwd="tiny")
        crate = (self.work / "tiny/target/package/tiny-1.0.0.crate").read_bytes()
        self.write("shelf/tiny-1.0.0.crate", crate)
        self.write("shelf/index/ti/ny/tiny", json.dumps({
            "name": "tiny", "vers": "1.0.0", "deps": [], "features": {}, "yanked": False,
            "cksum": hashlib.sha256(crate).hexdigest()}) + "\n")
        self.write("app/.cargo/config.toml", '[source.crates-io]\nreplace-with = "shelf"\n[source.shelf]\n'
                   f'local-registry = "{self.work}/shelf"\n')
        self.write("app/Cargo.toml", CARGO_MANIFEST.format("app", '[dependencies]\ntiny = "1"\n'))
        self.write("app/src/main.rs", 'fn main() { println!("{}", tiny::seven()); }\n')

        def build():
            shutil.rmtree(self.work / "app/target", ignore_errors=True)
            self.assertEqual(self.run_tool(cargo, "run", "--offline", "--quiet", cwd="app"), "7\n")

        build()
        self.assertTrue(list(self.home.glob(".cargo/registry/src/*/tiny-1.0.0/src/lib.rs")))
        self.take_away_what_may_move("cargo", ".cargo/registry")
        build()

    def test_go_builds_again_without_a_network(self):
        go = self.tool("go")
        module = 'module example.com/tiny\n\ngo 1.19\n'
        archive = io.BytesIO()
        with zipfile.ZipFile(archive, "w") as file:
            file.writestr("example.com/tiny@v1.0.0/go.mod", module)
            file.writestr("example.com/tiny@v1.0.0/tiny.go", "package tiny\n\nfunc Seven() int { return 7 }\n")
        versions = "shelf/example.com/tiny/@v"
        self.write(f"{versions}/list", "v1.0.0\n")
        self.write(f"{versions}/v1.0.0.info", '{"Version": "v1.0.0"}')
        self.write(f"{versions}/v1.0.0.mod", module)
        self.write(f"{versions}/v1.0.0.zip", archive.getvalue())
        self.write("app/go.mod", "module example.com/app\n\ngo 1.19\n\nrequire example.com/tiny v1.0.0\n")
        self.write("app/main.go", 'package main\n\nimport (\n\t"fmt"\n\n\t"example.com/tiny"\n)\n\n'
                   "func main() { fmt.Println(tiny.Seven()) }\n")

        def build(proxy):
            environment = {"GOPROXY": proxy, "GOSUMDB": "off", "GOFLAGS": "-mod=mod", "GOTOOLCHAIN": "local"}
            self.assertEqual(self.run_tool(go, "run", ".", cwd="app", **environment), "7\n")

        build(f"file://{self.work}/shelf")
        self.take_away_what_may_move("goModules", "go/pkg/mod")
        self.assert_measured(self.report(), "goBuild", [self.home / ".cache/go-build"])
        build("off")

    def test_ccache_compiles_again_and_finds_what_it_has(self):
        ccache, compiler = self.tool("ccache"), self.tool("cc")
        self.write("seven.c", "int seven(void) { return 7; }\n")

        def compile_it():
            self.run_tool(ccache, compiler, "-c", "seven.c", "-o", "seven.o", cwd=".")
            self.assertGreater((self.work / "seven.o").stat().st_size, 0)
            (self.work / "seven.o").unlink()

        def direct_hits():
            counts = dict(line.split("\t") for line in self.run_tool(ccache, "--print-stats").splitlines())
            return int(counts["direct_cache_hit"])

        compile_it()
        before = direct_hits()
        self.take_away_what_may_move("ccache", ".cache/ccache")
        compile_it()
        self.assertEqual(direct_hits(), before + 1)


if __name__ == "__main__":
    unittest.main()
