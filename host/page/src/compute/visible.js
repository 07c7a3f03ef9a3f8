// Tells when an element comes near the window, and when it has gone far from it.

export class Visible {
  // near and far are distances in px from the window.
  constructor({ near = 400, far = 2500 } = {}) {
    this.m_come = new WeakMap();
    this.m_gone = new WeakMap();
    this.m_near = new IntersectionObserver((entries) => this.#tell(entries, true),
                                           { rootMargin: `${near}px 0px` });
    this.m_far = new IntersectionObserver((entries) => this.#tell(entries, false),
                                          { rootMargin: `${far}px 0px` });
  }

  #tell(entries, come) {
    for (const entry of entries) {
      if (entry.isIntersecting !== come) continue;
      (come ? this.m_come : this.m_gone).get(entry.target)?.();
    }
  }

  watch(element, come, gone = null) {
    this.m_come.set(element, come);
    this.m_near.observe(element);
    if (!gone) return;
    this.m_gone.set(element, gone);
    this.m_far.observe(element);
  }

  forget(element) {
    this.m_near.unobserve(element);
    this.m_far.unobserve(element);
  }
}
