-- How old are the kernels?
--
-- Each machine's running kernel with the day on which it was built, the oldest first, and since when it runs. The day
-- is read from the version in the manner of Debian ("(2024-02-01)"), Alpine ("2024-05-06 07:40:41") and most others
-- ("Sat Apr 20 00:40:06 UTC 2024", with any zone of three letters); where it is told otherwise, it is NULL, and those
-- kernels stand at the end.

WITH latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen)),
  kernel AS (SELECT run_id, name, kernel_release, kernel_version, last_boot_up_time, length(kernel_version) AS size,
      CASE WHEN kernel_version LIKE '%(____-__-__)' THEN 'day'
           WHEN kernel_version LIKE '%____-__-__ __:__:__' THEN 'time'
           WHEN kernel_version LIKE '% ___ __ __:__:__ ___ ____' THEN 'date' END AS manner
    FROM operating_system),
  built AS (SELECT run_id, name, kernel_release, kernel_version, last_boot_up_time,
      CASE manner WHEN 'day' THEN substr(kernel_version, size - 10, 10)
        WHEN 'time' THEN substr(kernel_version, size - 18, 10)
        WHEN 'date' THEN substr(kernel_version, size - 3) || CASE substr(kernel_version, size - 23, 3)
            WHEN 'Jan' THEN '-01-' WHEN 'Feb' THEN '-02-' WHEN 'Mar' THEN '-03-' WHEN 'Apr' THEN '-04-'
            WHEN 'May' THEN '-05-' WHEN 'Jun' THEN '-06-' WHEN 'Jul' THEN '-07-' WHEN 'Aug' THEN '-08-'
            WHEN 'Sep' THEN '-09-' WHEN 'Oct' THEN '-10-' WHEN 'Nov' THEN '-11-' WHEN 'Dec' THEN '-12-' END
          || replace(substr(kernel_version, size - 19, 2), ' ', '0') END AS built_on
    FROM kernel)
SELECT b.built_on, b.kernel_release, count(*) OVER (PARTITION BY b.kernel_release) AS machines_with_it, l.machine,
  b.name AS operating_system, b.kernel_version, b.last_boot_up_time
FROM latest l JOIN built b ON b.run_id = l.id
ORDER BY b.built_on IS NULL, b.built_on, b.kernel_release, l.machine;

-- For these machines that is not the whole truth.
WITH asked(class) AS (VALUES ('MOLTA_OperatingSystem')),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT l.machine, a.class,
  CASE s.state WHEN 'complete' THEN l.state ELSE coalesce(s.state, 'not known to its plugins') END AS state,
  coalesce(s.reason, l.reason) AS reason
FROM latest l CROSS JOIN asked a LEFT JOIN class_state s ON s.run_id = l.id AND s.class = a.class
WHERE coalesce(s.state, '') <> 'complete' OR l.reason_code IN ('file changed', 'instances lost', 'interrupted')
ORDER BY l.machine, a.class;
