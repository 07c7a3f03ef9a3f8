// A blind test: is X the one or the other? What chance would do is told by the binomial distribution.

// The probability that mere guessing is right `right` times or more in `trials`.
export function chance(right, trials) {
  let term = 0.5 ** trials;  // of none right
  let sum = right <= 0 ? term : 0;
  for (let k = 1; k <= trials; ++k) {
    term *= (trials - k + 1) / k;
    if (k >= right) sum += term;
  }
  return Math.min(1, sum);
}

function coin() {
  const bytes = new Uint8Array(1);
  crypto.getRandomValues(bytes);
  return bytes[0] % 2 === 0 ? 'a' : 'b';
}

export class BlindTest {
  // So many trials are meant to be made: who stops when it looks good deceives himself.
  constructor(planned, toss = coin) {
    this.planned = planned;
    this.trials = 0;
    this.right = 0;
    this.m_toss = toss;
    this.x = toss();  // 'a' or 'b'
  }

  get done() { return this.trials >= this.planned; }
  get p() { return chance(this.right, this.trials); }

  // choice is 'a' or 'b'.
  answer(choice) {
    if (this.done) return;
    this.trials += 1;
    if (choice === this.x) this.right += 1;
    this.x = this.m_toss();
  }
}
