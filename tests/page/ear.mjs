// What the page plays: taken at the way out of its audio, so that the page needs to know nothing of it.
//
// Installed before the page's own script. window.ear.analyser is an AnalyserNode on what is heard,
// window.ear.context its clock. Every block is taken where it is made, with its time, so none is missed
// or mistaken for a later one however busy the machine is: record() begins anew with what is played from
// then on, until(time) resolves to all of it up to that time of the clock.
export function listen() {
  const connect = AudioNode.prototype.connect;
  const ear = { context: null, analyser: null, blocks: [], from: 0, last: 0, waiting: [] };
  window.ear = ear;

  const kTap = `registerProcessor('tap', class extends AudioWorkletProcessor {
    process([[samples]]) {
      this.port.postMessage({ time: currentTime, block: samples?.slice() ?? new Float32Array(128) });
      return true;
    }
  });`;

  const take = ({ time, block }) => {
    if (time < ear.from) return;
    ear.blocks.push(block);
    ear.last = time + block.length / ear.context.sampleRate;
    for (const look of [...ear.waiting]) look();
  };

  const install = (context) => {
    ear.context = context;
    ear.analyser = new AnalyserNode(context, { fftSize: 8192 });
    ear.bus = new GainNode(context);
    connect.call(ear.bus, ear.analyser);
    connect.call(ear.bus, context.destination);
    const source = `data:text/javascript,${encodeURIComponent(kTap)}`;
    ear.ready = context.audioWorklet.addModule(source).then(() => {
      const tap = new AudioWorkletNode(context, 'tap', { numberOfOutputs: 1 });
      tap.port.onmessage = ({ data }) => take(data);
      connect.call(ear.bus, tap);
      connect.call(tap, context.destination);
    });
  };

  AudioNode.prototype.connect = function (to, ...rest) {
    if (to instanceof AudioDestinationNode) {
      if (ear.context !== this.context) install(this.context);
      return connect.call(this, ear.bus, ...rest);
    }
    return connect.call(this, to, ...rest);
  };

  ear.record = () => {
    ear.from = ear.context.currentTime;
    ear.blocks = [];
    ear.last = 0;
  };
  ear.until = (time) => new Promise((done) => {
    const look = () => {
      if (ear.last < time) return;
      ear.waiting = ear.waiting.filter((one) => one !== look);
      done(ear.blocks.flatMap((block) => [...block]));
    };
    ear.waiting.push(look);
    look();
  });
}
