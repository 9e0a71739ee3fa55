#!/usr/bin/env python3
"""Runs the game in a real window on a private X server (Xvfb) and prints the CPU
time per frame and the peak resident memory, on the main menu and in the village,
at window scales 1 and 2.

Each run starts the game, lets it settle, then measures several windows of fixed
length: the CPU time of the whole process (all its threads, from
/proc/PID/task/*/schedstat) over each window, divided by the frames run in it.
The figure printed is the median of the windows ("run" is the same over the whole
long run, from the game's own cpu_ms, less a short run that ends where the windows
begin); the peak RSS is the game's own summary line (VmHWM). With --check it also compares the picture the X server shows
on the main menu with the headless PNG shot of the same frame, at each scale.

Needs Xvfb and xwininfo (packages xvfb, x11-utils); xdotool to press Return on the
"Initialize DirectSound failed!" box that a machine without a sound device shows
(installed with apt-get when missing and run as root); ImageMagick for --check;
openbox for --wm openbox.
"""
import argparse
import os
import re
import shutil
import signal
import statistics
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def need(program, package):
    if shutil.which(program):
        return True
    if os.geteuid() == 0 and shutil.which("apt-get"):
        print(f"installing {package} for {program}", file=sys.stderr)
        subprocess.run(["apt-get", "install", "-y", "--no-install-recommends", package],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return shutil.which(program) is not None


class XServer:
    """Xvfb on a free display, without lock or socket files."""

    def __init__(self, screen, wm):
        r, w = os.pipe()
        self.proc = subprocess.Popen(
            ["Xvfb", "-displayfd", str(w), "-screen", "0", screen, "-nolisten", "tcp",
             "-nolisten", "unix", "-nolock"],
            pass_fds=(w,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(w)
        number = b""
        with os.fdopen(r, "rb") as f:
            while not number.endswith(b"\n"):
                c = f.read(1)
                if not c:
                    break
                number += c
        if not number.strip():
            raise RuntimeError("Xvfb did not start")
        self.display = ":" + number.decode().strip()
        self.env = dict(os.environ, DISPLAY=self.display)
        self.wm = None
        if wm:
            self.wm = subprocess.Popen([wm], env=self.env, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            time.sleep(1.5)

    def close(self):
        for p in (self.wm, self.proc):
            if p:
                p.terminate()
                p.wait()

    def window_named(self, name):
        out = subprocess.run(["xwininfo", "-root", "-tree"], env=self.env,
                             capture_output=True, text=True).stdout
        for line in out.splitlines():
            m = re.match(r'\s*(0x[0-9a-f]+) "(.*)":', line)
            if m and m.group(2) == name:
                return m.group(1)
        return None


def cpu_ns(pid):
    total = 0
    for tid in os.listdir(f"/proc/{pid}/task"):
        try:
            with open(f"/proc/{pid}/task/{tid}/schedstat") as f:
                total += int(f.read().split()[0])
        except (OSError, ValueError, IndexError):
            pass
    return total


def dismiss_sound_box(x, deadline):
    """Presses Return on the sound failure box if it shows up before the deadline."""
    while time.time() < deadline:
        w = x.window_named("error")
        if w and shutil.which("xdotool"):
            subprocess.run(["xdotool", "key", "--window", w, "Return"], env=x.env)
            return True
        time.sleep(0.1)
    return False


WALK_REPLAY = """# run back and forth: the whole picture scrolls every frame
1 lup 320 240
2 ldown 620 460
{lines}
"""


def launch(game_dir, scene, scale, frames, sample_at, args, work, name, check=False):
    """Runs the game for a number of frames; returns its summary line's figures,
    the (time, cpu ns) samples taken at the given seconds after the start, and
    a picture of the window taken after the last sample (when check is set)."""
    cmd = ["./ashen-oath", "action=play", "--scale", str(scale), "--frames", str(frames)]
    if scene in ("village", "walk"):
        cmd += ["--warp", "main.map"]
    if scene == "walk":
        path = os.path.join(work, "walk.txt")
        lines = []
        for i, f in enumerate(range(100, frames, 100)):
            lines.append(f"{f} move {40 if i % 2 == 0 else 620} {60 if i % 2 == 0 else 460}")
        with open(path, "w") as out:
            out.write(WALK_REPLAY.format(lines="\n".join(lines)))
        cmd += ["--replay", path]
    x = XServer("1280x1024x24", args.wm)
    samples, shot = [], None
    log_path = os.path.join(work, name + ".log")
    try:
        env = dict(x.env)
        if args.renderer:
            env["ASHEN_RENDERER"] = args.renderer
        if args.audio:
            env["SDL_AUDIODRIVER"] = args.audio
        with open(log_path, "w") as log:
            t0 = time.time()
            game = subprocess.Popen(cmd, cwd=game_dir, env=env, stdout=log, stderr=subprocess.STDOUT)
            dismiss_sound_box(x, t0 + 10)
            for at in sample_at:
                time.sleep(max(0.0, t0 + at - time.time()))
                if game.poll() is not None:
                    break
                samples.append((time.time(), cpu_ns(game.pid)))
            if check and game.poll() is None:
                shot = os.path.join(work, name + ".png")
                w = x.window_named("Ashen Oath")
                subprocess.run(["import", "-window", w, shot], env=x.env, stderr=subprocess.DEVNULL)
            try:
                game.wait(timeout=120)
            except subprocess.TimeoutExpired:
                game.send_signal(signal.SIGKILL)
                game.wait()
    finally:
        x.close()
    with open(log_path) as f:
        m = re.search(r"frames=(\d+) wall_ms=(\d+) cpu_ms=(\d+) peak_rss_kb=(\d+)", f.read())
    if not m:
        raise RuntimeError(f"{scene} at scale {scale}: the game did not finish its frames; see {log_path}")
    return [int(v) for v in m.groups()], samples, shot


def run(game_dir, scene, scale, args, work):
    """A short run that ends with the warm-up and a long one that goes on for the
    measured windows: the difference of their frame counts over the difference
    of their wall times is the frame rate (the start-up, which both share, drops
    out)."""
    warmup = 16.0 if scene == "menu" else 5.0  # the menu comes after the splash pictures
    short_frames = int(warmup * 1000 / 41)
    long_frames = int((warmup + args.windows * args.seconds) * 1000 / 41) + 25
    (n1, wall1, cpu1, _), _, _ = launch(game_dir, scene, scale, short_frames, [], args, work,
                                        f"{scene}_{scale}_short")
    at = [warmup + k * args.seconds for k in range(args.windows + 1)]
    (n2, wall2, cpu2, rss), samples, shot = launch(game_dir, scene, scale, long_frames, at, args, work,
                                                   f"{scene}_{scale}", args.check and scene == "menu")
    if len(samples) < 2 or wall2 <= wall1:
        raise RuntimeError(f"{scene} at scale {scale}: the run ended early")
    rate = (n2 - n1) / ((wall2 - wall1) / 1000.0)
    per_frame = [(cb - ca) / 1e6 / ((tb - ta) * rate) for (ta, ca), (tb, cb) in zip(samples, samples[1:])]
    return {"ms": statistics.median(per_frame), "all": per_frame, "rss_kb": rss, "fps": rate,
            "whole": (cpu2 - cpu1) / (n2 - n1), "shot": shot}


def headless_menu_shot(game_dir, work):
    path = os.path.join(work, "menu_headless.png")
    subprocess.run(["./ashen-oath", "action=play", "--headless", "--uncapped", "--frames", "450",
                    "--shot", f"449:{path}"], cwd=game_dir, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    return path


def differing_pixels(a, b, scale):
    scaled = b
    if scale != 1:
        scaled = b.replace(".png", f"_x{scale}.png")
        subprocess.run(["convert", b, "-sample", f"{scale * 100}%", scaled])
    r = subprocess.run(["compare", "-metric", "AE", a, scaled, "null:"], capture_output=True, text=True)
    try:
        return int(float(r.stderr.split()[0]))
    except (ValueError, IndexError):
        return -1


def main():
    p = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    p.add_argument("--game", default=os.path.join(ROOT, "build", "game"), help="the game folder")
    p.add_argument("--seconds", type=float, default=30.0, help="length of one measured window")
    p.add_argument("--windows", type=int, default=3, help="measured windows per run (median)")
    p.add_argument("--scales", default="1,2")
    p.add_argument("--scenes", default="menu,village", help="menu, village, walk (running hero)")
    p.add_argument("--wm", default="", help="a window manager to run first (e.g. openbox)")
    p.add_argument("--renderer", default="", help="ASHEN_RENDERER for the game (software, accelerated)")
    p.add_argument("--audio", default="", help="SDL_AUDIODRIVER for the game (e.g. dummy)")
    p.add_argument("--check", action="store_true",
                   help="compare the menu's window picture with the headless shot")
    p.add_argument("--out", default="", help="folder for logs and pictures (default: bench-window "
                   "beside the game folder)")
    args = p.parse_args()

    game_dir = os.path.abspath(args.game)
    if not os.path.exists(os.path.join(game_dir, "ashen-oath")):
        sys.exit(f"no game in {game_dir}: build it first (scripts/play.sh or cmake --build build)")
    if not need("Xvfb", "xvfb") or not need("xwininfo", "x11-utils"):
        sys.exit("Xvfb and xwininfo are needed")
    if not args.audio and not need("xdotool", "xdotool"):
        print("xdotool is missing: the sound failure box cannot be dismissed; using SDL_AUDIODRIVER=dummy",
              file=sys.stderr)
        args.audio = "dummy"
    if args.wm and not need(args.wm, args.wm):
        sys.exit(f"{args.wm} is not installed")
    if args.check and not (need("import", "imagemagick") and shutil.which("compare")):
        sys.exit("--check needs ImageMagick")
    work = os.path.abspath(args.out or os.path.join(os.path.dirname(game_dir), "bench-window"))
    os.makedirs(work, exist_ok=True)

    print(f"{'scene':8} {'scale':>5} {'ms CPU/frame':>13} {'windows':>24} {'run':>6} {'peak RSS':>10} {'fps':>6}")
    results = {}
    for scene in args.scenes.split(","):
        for scale in (int(s) for s in args.scales.split(",")):
            r = run(game_dir, scene, scale, args, work)
            results[(scene, scale)] = r
            windows = " ".join(f"{v:.3f}" for v in r["all"])
            print(f"{scene:8} {scale:>5} {r['ms']:>13.3f} {windows:>24} {r['whole']:>6.3f} "
                  f"{r['rss_kb'] / 1024:>7.1f} MB {r['fps']:>6.2f}", flush=True)
    log = os.path.join(game_dir, "GameEngine.log")
    if os.path.exists(log):
        with open(log, "rb") as f:
            chosen = [l for l in f.read().decode("latin-1").splitlines() if "Renderer:" in l]
        if chosen:
            print("renderer:", chosen[-1].split("----->")[-1])
    if args.check:
        headless = headless_menu_shot(game_dir, work)
        for (scene, scale), r in results.items():
            if scene == "menu" and r["shot"]:
                d = differing_pixels(r["shot"], headless, scale)
                print(f"menu at scale {scale}: {d} pixels differ from the headless shot")


if __name__ == "__main__":
    main()
