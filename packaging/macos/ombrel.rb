# The Homebrew cask. What only a release knows is left open: the SHA-256 is zeros, which no disk image has, so that Homebrew
# refuses to install from this file, and ombrel.example is an address that cannot exist. sign-and-notarize, which makes the
# disk image, writes the filled cask beside it (fill-cask).
cask "ombrel" do
  version "0.1.0"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"

  url "https://ombrel.example/download/Ombrel-#{version}.dmg"
  name "Ombrel"
  desc "Thin coloured bar that shows how full the startup volume is"
  homepage "https://ombrel.example/download/"

  depends_on macos: ">= :ventura"

  app "Ombrel.app"

  # A script and not a link, through which the program would not find the bundle that it belongs to.
  script = "#{staged_path}/ombrel.sh"
  binary script, target: "ombrel"
  preflight do
    File.write script, <<~SH
      #!/bin/sh
      exec "#{appdir}/Ombrel.app/Contents/MacOS/Ombrel" "$@"
    SH
  end

  uninstall launchctl: "app.ombrel.Ombrel",
            quit:      "app.ombrel.Ombrel"

  zap trash: [
    "~/Library/Application Support/Ombrel",
    "~/Library/LaunchAgents/app.ombrel.Ombrel.plist",
    "~/Library/Preferences/app.ombrel.Ombrel.plist",
  ]
end
