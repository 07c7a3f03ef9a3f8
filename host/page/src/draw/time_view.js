// The part of a recording that is shown, the same for all that is drawn of it.

const kClosest = 0.002;  // s

export class TimeView {
  constructor(seconds) {
    this.seconds = seconds;
    this.from = 0;
    this.to = seconds;
    this.onchange = () => {};
  }

  get span() { return this.to - this.from; }
  get whole() { return this.span >= this.seconds - 1e-9; }

  show(from, to) {
    const span = Math.min(this.seconds, Math.max(kClosest, to - from));
    this.from = Math.max(0, Math.min(this.seconds - span, from));
    this.to = this.from + span;
    this.onchange();
  }

  fit() { this.show(0, this.seconds); }

  // A factor above 1 shows less. What is at `at` seconds stays where it is.
  zoom(factor, at) {
    const span = this.span / factor;
    const share = (at - this.from) / this.span;
    this.show(at - share * span, at + (1 - share) * span);
  }

  pan(seconds) { this.show(this.from + seconds, this.from + seconds + this.span); }

  // Where a time is, as a share of the width; may be outside 0..1.
  share(time) { return (time - this.from) / this.span; }
  time(share) { return this.from + share * this.span; }

  // Moves on when something that plays leaves what is shown.
  follow(time) {
    if (!this.whole && (time < this.from || time > this.to)) this.show(time, time + this.span);
  }
}
