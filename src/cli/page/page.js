"use strict";
(() => {
  const STEP = 200;

  // A table with a search: shows the rows that hold all words, and of many the first.
  const search = (section) => {
    const rows = Array.from(section.querySelectorAll("tbody tr"));
    const texts = rows.map((row) => row.textContent.toLowerCase());
    const field = section.querySelector("input");
    const choice = section.querySelector("select");
    const found = section.querySelector(".found");
    const more = section.querySelector(".more");
    const { one, many } = section.dataset;
    let most = STEP;

    const draw = () => {
      const words = field.value.toLowerCase().split(/\s+/).filter(Boolean);
      let fitting = 0;
      rows.forEach((row, i) => {
        const fits = (!choice.value || row.className === choice.value) &&
          words.every((word) => texts[i].includes(word));
        if (fits) fitting += 1;
        row.hidden = !fits || fitting > most;
      });
      const shown = Math.min(fitting, most);
      const count = (number) => number.toLocaleString("en");
      found.textContent = fitting === 0 ? "Nothing found."
        : `${count(shown)} of ${count(fitting)} ${fitting === 1 ? one : many} shown` +
          (fitting === rows.length ? "." : `, of ${count(rows.length)} in all.`);
      more.hidden = fitting <= most;
    };
    const again = () => { most = STEP; draw(); };

    field.addEventListener("input", again);
    choice.addEventListener("change", again);
    more.querySelector("button").addEventListener("click", () => {
      const next = rows.filter((row) => !row.hidden).length;
      most += STEP;
      draw();
      // Who goes by keys goes on where the new rows begin.
      const first = rows.filter((row) => !row.hidden)[next];
      if (first) { first.tabIndex = -1; first.focus({ preventScroll: true }); }
    });
    // On paper there is no button to ask for the rest.
    let before = STEP;
    addEventListener("beforeprint", () => { before = most; most = Infinity; draw(); });
    addEventListener("afterprint", () => { most = before; draw(); });

    section.querySelector(".tools").hidden = rows.length < 10;
    draw();
  };
  document.querySelectorAll(".list").forEach(search);

  // What a square of the picture stands for, when it is pointed at.
  const map = document.querySelector(".map");
  if (map) {
    const names = {};
    document.querySelectorAll(".legend i").forEach((square) => {
      names[square.className] = square.nextElementSibling.firstChild.data.trim();
    });
    map.addEventListener("pointerover", ({ target }) => {
      if (target === map || target.title) return;
      const from = Array.prototype.indexOf.call(map.children, target) * Number(map.dataset.bytes);
      target.title = `${names[target.className]}, from byte ${from.toLocaleString("en")}`;
    });
  }
})();
