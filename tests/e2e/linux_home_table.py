"""What takes space in a Linux home folder, and what may be said of each place.

Written by hand from what the tools' owners document, and not derived from the application's own table.
"""

from collections import namedtuple

GUIDE_IDS = """appCaches flatpakAppCaches thumbnails browserCaches oldLogs submittedCrashReports coreDumps journal aptArchives
    dnfCache pacmanCache flatpak flatpakLeftBehind snap snapTrash trash docker podman pip uv conda npm pnpm cargo goBuild
    goModules gradle ccache jetbrains vscode huggingface ollama steamShaders steamPrefixes virtualMachines vagrant""".split()
# Those with places outside of the home folder, of which a test without mounts of its own knows nothing.
SYSTEM_IDS = {"coreDumps", "journal", "aptArchives", "dnfCache", "pacmanCache", "flatpak", "snap", "docker", "ollama"}

# What the owners recommend. An entry that is not named here has no command.
COMMANDS = {
    "journal": {"sudo journalctl --vacuum-size=500M"},
    "coreDumps": {"coredumpctl list"},
    "aptArchives": {"sudo apt-get clean"},
    "dnfCache": {"sudo dnf clean packages"},
    "pacmanCache": {"paccache -r", "sudo paccache -r"},
    "flatpak": {"flatpak uninstall --unused"},
    "flatpakLeftBehind": {"flatpak uninstall --delete-data"},
    "snap": {"snap list --all"},
    "docker": {"docker system df", "docker image prune"},
    "podman": {"podman image prune"},
    "pip": {"pip cache purge"},
    "uv": {"uv cache prune"},
    "conda": {"conda clean --all"},
    "npm": {"npm cache verify"},
    "pnpm": {"pnpm store prune"},
    "goBuild": {"go clean -cache"},
    "goModules": {"go clean -modcache"},
    "ccache": {"ccache -C"},
    "huggingface": {"hf cache rm", "hf cache prune"},
    "ollama": {"ollama list"},
    "vagrant": {"vagrant box prune"},
}

# Single files that may move to the Trash; measured and explained; never offered.
MOVABLE, MEASURED, PROTECTED = "movable", "measured", "protected"

# `content` is the size of a file in KiB, or what is in a folder: sizes in KiB, links by their targets. `guide` is the entry
# that measures the place, or None.
Place = namedtuple("Place", "path kind guide content")

# What a rule that is too generous would offer: old, large enough for a log, and named like one or like an installer.
TEMPTING = {"old.log": 1024, "setup.deb": 8, "inner/film.part": 8}
BLOB = "0123456789abcdef" * 4
REVISION = "c0ffee" * 6 + "c0ff"


def measured(path, guide, content=None):
    return Place(path, MEASURED, guide, {"data": 40, "inner/more": 12} if content is None else content)


def protected(path, guide=None, content=None):
    return Place(path, PROTECTED, guide, TEMPTING if content is None else content)


PLACES = [
    # Logs: the old ones are measured, the current ones are nobody's business.
    measured(".xsession-errors.old", "oldLogs", 1024),
    protected(".xsession-errors", content=1024),
    measured(".local/share/xorg/Xorg.0.log.old", "oldLogs", 64),
    measured(".local/share/xorg/Xorg.1.log.old", "oldLogs", 600),
    protected(".local/share/xorg/Xorg.0.log", content=600),
    measured(".npm/_logs", "oldLogs", {"2020-01-01-debug-0.log": 600, "2020-01-02-debug-0.log": 4}),
    measured(".local/state/wireplumber/wireplumber.log", "oldLogs", 1024),
    measured(".local/state/nvim/lsp.log", "oldLogs", 8),
    protected(".local/state/nvim/undo.txt", content=1024),
    protected(".local/state/nvim/shada/main.log", content=1024),
    protected(".local/state/loose.log", content=1024),

    # Crash reports.
    measured(".mozilla/firefox/Crash Reports/submitted", "submittedCrashReports", {"bp-1.txt": 8, "bp-2.txt": 4}),
    protected(".mozilla/firefox/Crash Reports/pending"),
    measured("core.1234", "coreDumps", 2048),
    protected("core", content=8),

    # What packages leave.
    measured(".local/share/flatpak", "flatpak", {
        "app/org.example.Viewer/current/active/files/bin/viewer": 256,
        "repo/objects/00/11.file": 128, "runtime/org.example.Platform/files/lib.so": 64}),
    measured(".var/app/org.example.Viewer/cache", "flatpakAppCaches"),
    measured(".var/app/org.example.Gone/cache", "flatpakAppCaches"),
    protected(".var/app/org.example.Viewer/data"),
    protected(".var/app/org.example.Viewer/config"),
    measured(".var/app/org.example.Gone/data", "flatpakLeftBehind"),
    measured(".var/app/org.example.Gone/config", "flatpakLeftBehind"),
    measured("snap/player/42/.local/share/Trash", "snapTrash", {"files/film.mkv": 512, "info/film.mkv.trashinfo": 4}),
    measured("snap/player/common/.local/share/Trash", "snapTrash", {"files/song.ogg": 64, "info/song.ogg.trashinfo": 4}),
    protected("snap/player/42/Documents"),
    measured(".local/share/Trash", "trash", {"files/thesis.pdf": 512, "info/thesis.pdf.trashinfo": 4, "directorysizes": 4}),

    # What desktop programs can make again.
    measured(".cache/thumbnails", "thumbnails", {"large/a.png": 32, "normal/b.png": 16}),
    measured(".cache/fontconfig", "appCaches", {"one.cache-8": 24}),
    measured(".cache/gone-app", "appCaches", {"a/b/c/deep": 1024, "empty": {}, "setup.deb": 8}),
    measured(b".cache/caf\xff", "appCaches", {b"na\xefve": 20}),
    measured(".cache/old-file.bin", "appCaches", 600),
    measured(".cache/mozilla", "browserCaches"),
    measured(".cache/google-chrome", "browserCaches"),
    measured(".cache/chromium", "browserCaches"),
    protected(".mozilla/firefox/ab12.default-release"),
    protected(".config/google-chrome/Default"),
    protected(".config/chromium/Default"),
    measured(".cache/JetBrains/IntelliJIdea2022.3", "jetbrains"),
    measured(".cache/JetBrains/PyCharm2021.1", "jetbrains"),
    protected(".config/JetBrains/PyCharm2021.1"),
    measured(".config/Code/Cache", "vscode"),
    measured(".config/Code/CachedData", "vscode"),
    measured(".config/Code/CachedExtensionVSIXs", "vscode"),
    protected(".config/Code/User/History"),

    # Graphics, the desktop itself, and what only looks like a cache.
    protected(".cache/mesa_shader_cache"),
    protected(".cache/mesa_shader_cache_db"),
    protected(".cache/kwin"),
    protected(".cache/plasmashell"),
    protected(".cache/qtshadercache-x86_64-little_endian-lp64"),
    protected(".cache/doc"),
    protected(".cache/ibus"),
    protected(".cache/evolution"),
    protected(".cache/ms-playwright"),
    protected(".cache/Cypress"),
    protected(".cache/pypoetry"),

    # Coding tools.
    measured(".cache/pip", "pip"),
    protected(".cache/uv", "uv"),
    protected("miniconda3/pkgs", "conda"),
    protected("anaconda3/pkgs", "conda"),
    protected("miniforge3/pkgs", "conda"),
    protected(".conda/pkgs", "conda"),
    protected("miniconda3/envs/work"),
    measured(".npm/_cacache", "npm"),
    protected(".npm/_npx"),
    measured(".local/share/pnpm/store", "pnpm"),
    protected(".local/share/pnpm/global"),
    measured(".cargo/registry", "cargo", {"src/index/tiny-1.0.0/lib.rs": 4, "cache/index/tiny-1.0.0.crate": 40}),
    measured(".cargo/git", "cargo", {"db/tiny/pack": 16}),
    protected(".cargo/bin"),
    protected(".cargo/credentials.toml", content=4),
    measured(".cache/go-build", "goBuild"),
    protected("go/pkg/mod", "goModules", {"example.com/tiny@v1.0.0/tiny.go": 4, "cache/download/tiny.zip": 1024}),
    protected("go/bin"),
    protected("go/src"),
    measured(".gradle/caches", "gradle"),
    protected(".gradle/gradle.properties", content=4),
    protected(".m2/repository"),
    measured(".cache/ccache", "ccache"),
    measured(".ccache", "ccache"),

    # Models, games, machines.
    measured(".cache/huggingface/hub", "huggingface", {
        f"models--example--tiny/blobs/{BLOB}": 700,
        f"models--example--tiny/snapshots/{REVISION}/model.safetensors": f"../../blobs/{BLOB}",
        f"models--example--tiny/snapshots/{REVISION}/again.safetensors": f"../../blobs/{BLOB}",
        f"models--example--tiny/snapshots/{REVISION}/missing.safetensors": "../../blobs/missing"}),
    protected(".cache/huggingface/token", content=4),
    measured(".ollama/models", "ollama", {"blobs/sha256-1": 512, "manifests/tiny": 4}),
    protected(".ollama/id_ed25519", content=4),
    measured(".local/share/Steam/steamapps/shadercache", "steamShaders"),
    protected(".local/share/Steam/steamapps/compatdata", "steamPrefixes"),
    protected(".local/share/Steam/steamapps/common"),
    protected(".android/avd", "virtualMachines"),
    protected("VirtualBox VMs", "virtualMachines", {"Debian/Debian.vdi": 512, "Debian/Debian.vbox": 4}),
    protected(".local/share/libvirt/images/debian.qcow2", "virtualMachines", 512),
    protected(".local/share/a/b/c/deep.vmdk", "virtualMachines", 64),
    protected(".local/share/boxes/other.vdi", "virtualMachines", 64),
    protected(".local/share/boxes/notes.txt", content=1024),
    measured(".vagrant.d/boxes", "vagrant"),
    protected(".vagrant.d/insecure_private_key", content=4),

    # What belongs to the person.
    protected(".ssh/id_ed25519", content=4),
    protected(".gnupg/private-keys-v1.d"),
    protected(".aws/credentials", content=4),
    protected(".local/share/keyrings/login.keyring", content=4),
    protected("Documents"),

    # The download folder: what may move, and its neighbours that may not. 21 days for installers, 14 for partial downloads.
    *(Place(f"Downloads/Painter.{extension}", MOVABLE, None, 6 * 1024)
      for extension in ("dmg", "pkg", "xip", "deb", "rpm", "snap", "flatpak")),
    Place("Downloads/LOUD.DEB", MOVABLE, None, 5 * 1024),
    Place(b"Downloads/na\xffve.rpm", MOVABLE, None, 5 * 1024),
    *(Place(f"Downloads/film.mkv.{extension}", MOVABLE, None, 5 * 1024)
      for extension in ("download", "crdownload", "part", "partial", "aria2", "!qB", "opdownload")),
    protected("Downloads/.hidden.deb", content=6 * 1024),
    protected("Downloads/Painter.AppImage", content=6 * 1024),
    protected("Downloads/driver.run", content=6 * 1024),
    protected("Downloads/Painter.deb.run", content=6 * 1024),
    protected("Downloads/letter.pdf", content=6 * 1024),
    protected("Downloads/small.deb", content=5 * 1024 - 4),
    protected("Downloads/small.part", content=5 * 1024 - 4),
    protected("Downloads/inner", content={"inside.deb": 6 * 1024}),
    protected("Downloads/folder.deb", content={"data": 6 * 1024}),

    # What a home folder that was restored from a Mac has.
    Place("Library/Logs/old.log", MOVABLE, None, 1024),
]

# Offered for review and for nothing else.
REVIEW = "Downloads/photos.zip"
MAY_BE_REVIEWED = {REVIEW, ".npm/_cacache", ".gradle/caches"}
MOVABLE_PATHS = [*(place.path for place in PLACES if place.kind == MOVABLE), "Downloads/due.snap", "Downloads/due.aria2"]
