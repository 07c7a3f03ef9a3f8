// A private sound server whose sink is nowhere, for browsers that play only where there is one.
import { spawn } from 'node:child_process';
import { existsSync } from 'node:fs';
import path from 'node:path';

// Starts it in a folder; returns {server: for PULSE_SERVER, stop()}, or null where there is none.
export async function startSoundServer(folder) {
  const there = process.env.PATH.split(':').some((p) => existsSync(path.join(p, 'pulseaudio')));
  if (!there) return null;
  const socket = path.join(folder, 'native');
  const child = spawn('pulseaudio', ['-n', '--daemonize=no', '--use-pid-file=no',
    '--exit-idle-time=-1', '--disable-shm=yes', '-L', 'module-null-sink',
    '-L', `module-native-protocol-unix socket=${socket} auth-anonymous=1`],
    { stdio: 'ignore', env: { ...process.env, HOME: folder, XDG_RUNTIME_DIR: folder } });
  const gone = new Promise((done) => child.once('exit', done));
  while (!existsSync(socket)) {
    if (child.exitCode !== null) throw new Error('pulseaudio has ended');
    await new Promise((done) => setTimeout(done, 20));
  }
  return { server: `unix:${socket}`, stop: () => { child.kill(); return gone; } };
}
